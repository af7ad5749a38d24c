#pragma once

#include <zirk/vusyslog.h>

/// The library's own lines, for the library and its backends. The level is tested first, so that
/// a line nobody wants costs one comparison and never evaluates its arguments.
#define ZIRK_LOG(level, levelName, ...)                                                        \
  do {                                                                                         \
    if (::ZIRK::LogLevel >= (level)) ::ZIRK::_vuSysLog(level, levelName, "ZIRK", __VA_ARGS__); \
  } while (false)

#define ZIRK_LOG_ERROR(...) ZIRK_LOG(3, "error", __VA_ARGS__)
#define ZIRK_LOG_WARNING(...) ZIRK_LOG(4, "warning", __VA_ARGS__)
#define ZIRK_LOG_INFO(...) ZIRK_LOG(6, "info", __VA_ARGS__)
#define ZIRK_LOG_DEBUG(...) ZIRK_LOG(7, "debug", __VA_ARGS__)
