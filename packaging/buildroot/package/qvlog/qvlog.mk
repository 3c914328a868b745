################################################################################
#
# qvlog
#
################################################################################

QVLOG_VERSION = 1.0.0
QVLOG_SITE = $(BR2_EXTERNAL_QVLOG_PATH)/../..
QVLOG_SITE_METHOD = local
QVLOG_LICENSE = Proprietary
QVLOG_REDISTRIBUTE = NO
QVLOG_INSTALL_STAGING = YES
QVLOG_SUPPORTS_IN_SOURCE_BUILD = NO
QVLOG_CONF_OPTS = \
	-DQVLOG_BUILD_TESTS=OFF \
	-DQVLOG_BUILD_EXAMPLES=OFF \
	-DQVLOG_INSTALL_DOCUMENTATION=OFF

ifeq ($(BR2_PACKAGE_QVLOG_COLLECTOR),y)
QVLOG_CONF_OPTS += -DQVLOG_BUILD_TOOLS=ON
else
QVLOG_CONF_OPTS += -DQVLOG_BUILD_TOOLS=OFF
endif

ifeq ($(BR2_SHARED_STATIC_LIBS),y)
QVLOG_CONF_OPTS += -DQVLOG_BUILD_STATIC=ON
endif

$(eval $(cmake-package))
