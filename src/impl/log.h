#pragma once

#include <zirk/vusyslog.h>

/// @file
/// The log of the library and its backends.

/// Writes a log line with the tag "ZIRK", for the library and its backends; the arguments after the
/// level name are those of printf. The level is tested first, so a line that is dropped costs one
/// comparison and does not evaluate its arguments. Any thread may use it.
#define ZIRK_LOG(level, levelName, ...)                                                        \
  do {                                                                                         \
    if (::ZIRK::LogLevel >= (level)) ::ZIRK::_vuSysLog(level, levelName, "ZIRK", __VA_ARGS__); \
  } while (false)

/// Logs that a request failed.
#define ZIRK_LOG_ERROR(...) ZIRK_LOG(3, "error", __VA_ARGS__)
/// Logs that a request was carried out differently, or statistics.
#define ZIRK_LOG_WARNING(...) ZIRK_LOG(4, "warning", __VA_ARGS__)
/// Logs an event that is rare enough to follow.
#define ZIRK_LOG_INFO(...) ZIRK_LOG(6, "info", __VA_ARGS__)
/// Logs details.
#define ZIRK_LOG_DEBUG(...) ZIRK_LOG(7, "debug", __VA_ARGS__)
