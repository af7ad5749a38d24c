#pragma once

#include <zirk/vusyslog.h>

/// @file
/// The log of the library and its backends.

/// Writes a line of the library's own, for the library and its backends; what follows the level is
/// as for printf. The level is tested first, so that a line nobody wants costs one comparison and
/// never evaluates its arguments.
#define ZIRK_LOG(level, levelName, ...)                                                        \
  do {                                                                                         \
    if (::ZIRK::LogLevel >= (level)) ::ZIRK::_vuSysLog(level, levelName, "ZIRK", __VA_ARGS__); \
  } while (false)

/// Something that was asked for could not be done.
#define ZIRK_LOG_ERROR(...) ZIRK_LOG(3, "error", __VA_ARGS__)
/// Something was done otherwise than asked for, or statistics.
#define ZIRK_LOG_WARNING(...) ZIRK_LOG(4, "warning", __VA_ARGS__)
/// What happens, seldom enough to be followed.
#define ZIRK_LOG_INFO(...) ZIRK_LOG(6, "info", __VA_ARGS__)
/// What happens in detail.
#define ZIRK_LOG_DEBUG(...) ZIRK_LOG(7, "debug", __VA_ARGS__)
