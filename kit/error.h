#pragma once

#include <zirk/vusyslog.h>

/// An error line of the library's log; what is passed is as for printf.
#define ZIRK_KIT_ERROR(...)                                                        \
  do {                                                                             \
    if (::ZIRK::LogLevel >= 3) ::ZIRK::_vuSysLog(3, "error", "ZIRK", __VA_ARGS__); \
  } while (false)
