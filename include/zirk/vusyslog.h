#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// Messages with a level above this are dropped: 3 error, 4 warning, 6 info, 7 debug. 4 at first.
extern ZIRK_API int LogLevel;
/// Messages allowed per interval; 0 or less drops every message while the limiter is on. 20 at
/// first.
extern ZIRK_API int LogBurst;
/// Length of the limiter's interval in seconds; 0 or less turns the limiter off. 5 at first.
extern ZIRK_API int LogInterval;

/// Writes one line, "<tag.levelName>: message", to standard error, and to /dev/kmsg as well when
/// `level` is 3 or less. `fmt` and the arguments after it are those of printf. A line that
/// has more than 1023 characters with its newline is cut to 1023 and has no newline. A message that
/// the limiter drops is counted, and the count is written once in the next interval. The function
/// does not allocate. Any thread may call.
ZIRK_API void _vuSysLog(int level, const char* levelName, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 4, 5)));

}  // namespace ZIRK
