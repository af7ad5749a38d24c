#include <zirk/vusyslog.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <type_traits>

namespace ZIRK {

int LogLevel = 4;
int LogBurst = 20;
int LogInterval = 5;

namespace {

constexpr int kKernelLogLevel = 3;
constexpr int kLineSize = 1024;

/// Counts the messages of the current interval, all levels and tags together.
class Limiter {
 public:
  static Limiter& Instance() {
    static Limiter limiter;
    return limiter;
  }

  /// Whether this message may be written. The first one of a new interval also reports, under its
  /// own tag and level, how many the last interval dropped.
  bool Admit(const char* levelName, const char* tag) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::nanoseconds age = now - intervalStart_;
    if (age.count() > int64_t{LogInterval} * 1'000'000'000) {
      if (suppressed_ != 0)
        fprintf(stderr, "<%s.%s>: %d messages suppressed\n", tag, levelName, suppressed_);
      intervalStart_ = now;
      suppressed_ = 0;
      emitted_ = 0;
    }
    if (LogBurst <= emitted_) {
      ++suppressed_;
      return false;
    }
    ++emitted_;
    return true;
  }

 private:
  std::mutex mutex_;
  std::chrono::steady_clock::time_point intervalStart_ = std::chrono::steady_clock::now();
  int suppressed_ = 0;
  int emitted_ = 0;
};

// Static objects that are destroyed late still log, so the limiter is never destroyed itself.
static_assert(std::is_trivially_destructible_v<Limiter>);

/// Returns the line's length. A line that fills the buffer is cut; its length includes the zero.
int FormatLine(char (&line)[kLineSize], const char* tag, const char* levelName, const char* fmt,
               va_list args) {
  int64_t n = std::max(snprintf(line, kLineSize, "<%s.%s>: ", tag, levelName), 0);
  const auto room = [&n] { return static_cast<size_t>(kLineSize - n); };
  if (n >= kLineSize) return kLineSize;
  // A message that cannot be formatted counts -1, so that the line ends after the colon.
  n = std::max<int64_t>(n + vsnprintf(line + n, room(), fmt, args), 0);
  if (n < kLineSize) n += snprintf(line + n, room(), "\n");
  return static_cast<int>(std::min<int64_t>(n, kLineSize));
}

void WriteToKernelLog(const char* text, size_t size) {
  const int fd = open("/dev/kmsg", O_WRONLY | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return;
  // A short or failed write has nowhere to be reported.
  [[maybe_unused]] const ssize_t written = write(fd, text, size);
  close(fd);
}

}  // namespace

void _vuSysLog(int level, const char* levelName, const char* tag, const char* fmt, ...) {
  if (level > LogLevel) return;
  Limiter& limiter = Limiter::Instance();
  if (LogInterval > 0 && !limiter.Admit(levelName, tag)) return;

  char line[kLineSize];
  va_list args;
  va_start(args, fmt);
  const int length = FormatLine(line, tag, levelName, fmt, args);
  va_end(args);
  if (level <= kKernelLogLevel) WriteToKernelLog(line, static_cast<size_t>(length));
  fputs(line, stderr);
}

}  // namespace ZIRK
