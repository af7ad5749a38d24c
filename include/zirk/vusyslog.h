#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// Messages with a level number above this are dropped: 3 error, 4 warning, 6 info, 7 debug.
extern ZIRK_API int LogLevel;
/// Messages allowed per interval; 0 or less suppresses all of them while the limiter is on.
extern ZIRK_API int LogBurst;
/// Seconds in a limiter interval; 0 or less turns the limiter off.
extern ZIRK_API int LogInterval;

/// Writes one line, "<tag.levelName>: message", to standard error, and to /dev/kmsg as well when
/// `level` is 3 or less. `fmt` and what follows are as for printf. A line that, with its
/// newline, has more than 1023 characters is cut to 1023 and ends without one. Does not allocate.
/// Any thread may call.
ZIRK_API void _vuSysLog(int level, const char* levelName, const char* tag, const char* fmt, ...)
    __attribute__((format(printf, 4, 5)));

}  // namespace ZIRK
