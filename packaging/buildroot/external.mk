include $(sort $(wildcard $(BR2_EXTERNAL_QVLOG_PATH)/package/*/*.mk))
