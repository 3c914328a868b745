SUMMARY = "Logging framework and portable toolkit for embedded Linux"
DESCRIPTION = "One way to log for every process of a device: levels, modules and outputs that are \
switched at run time, and a portable toolkit in C and C++ beneath it. The collector merges the \
lines of all processes."
SECTION = "libs"
LICENSE = "CLOSED"

inherit cmake pkgconfig systemd bash-completion externalsrc

# The recipe builds the tree that it lies in; nothing is fetched.
EXTERNALSRC = "${@os.path.abspath(d.expand('${THISDIR}/../../../..'))}"

EXTRA_OECMAKE = "-DQVLOG_BUILD_TESTS=OFF -DQVLOG_BUILD_EXAMPLES=OFF"

PACKAGECONFIG ??= "collector documentation"
PACKAGECONFIG[collector] = "-DQVLOG_BUILD_TOOLS=ON -DQVLOG_UNIT_DIR=${systemd_system_unitdir},-DQVLOG_BUILD_TOOLS=OFF"
PACKAGECONFIG[documentation] = "-DQVLOG_INSTALL_DOCUMENTATION=ON,-DQVLOG_INSTALL_DOCUMENTATION=OFF"
PACKAGECONFIG[static] = "-DQVLOG_BUILD_STATIC=ON,-DQVLOG_BUILD_STATIC=OFF"

PACKAGES =+ "${PN}-collector"
FILES:${PN}-collector = "${sbindir}/qvlogd ${bindir}/qvlogcat ${systemd_system_unitdir}"
FILES:${PN}-dev += "${datadir}/gdb"

SYSTEMD_PACKAGES = "${@bb.utils.contains('PACKAGECONFIG', 'collector', '${PN}-collector', '', d)}"
SYSTEMD_SERVICE:${PN}-collector = "qvlogd.socket"
