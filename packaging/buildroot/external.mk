include $(sort $(wildcard $(BR2_EXTERNAL_ZIRK_PATH)/package/*/*.mk))
