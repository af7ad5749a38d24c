#pragma once

#include <zirk/vusyslog.h>

/// Writes an error line to the library's log. The arguments are those of printf().
#define ZIRK_KIT_ERROR(...)                                                        \
  do {                                                                             \
    if (::ZIRK::LogLevel >= 3) ::ZIRK::_vuSysLog(3, "error", "ZIRK", __VA_ARGS__); \
  } while (false)
