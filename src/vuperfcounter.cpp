#include <time.h>
#include <zirk/impl/log.h>
#include <zirk/vuperfcounter.h>

namespace ZIRK {

bool LogPerf = false;
bool LogFPS = false;
bool LogOverdraw = false;
uint32_t draw_time = 0;
uint32_t swap_time = 0;

namespace {

timespec Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now;
}

/// Wraps as 32-bit arithmetic does.
uint32_t MicrosecondsBetween(const timespec& from, const timespec& to) {
  return static_cast<uint32_t>(to.tv_sec - from.tv_sec) * 1'000'000u +
         static_cast<uint32_t>((to.tv_nsec - from.tv_nsec) / 1000);
}

void LogFrames(uint32_t frames, uint32_t interval) {
  const double f = frames;
  const double seconds = interval / 1'000'000.0;
  const auto fps = static_cast<float>(f / seconds);
  const auto frameMs = static_cast<float>(interval / 1000.0 / f);
  // The text always reports 1.0 seconds; it is not a measurement.
  ZIRK_LOG_WARNING("Average frame time %.2f ms %.0f fps in %.1f secs", static_cast<double>(frameMs),
                   static_cast<double>(fps), 1.0);
}

void LogDrawAndSwap(uint32_t frames) {
  const uint32_t draw = draw_time / frames;
  const uint32_t swap = swap_time / frames;
  ZIRK_LOG_WARNING("Average draw time %.2f ms swap time %.2f ms", draw / 1000.0, swap / 1000.0);
}

}  // namespace

struct VuPerfCounterImpl {
  void Start() {
    if (running) {
      ZIRK_LOG_INFO("%s: restarting", __PRETTY_FUNCTION__);
      Stop();
    }
    start = Now();
    running = true;
  }

  void Stop() {
    if (!running) {
      ZIRK_LOG_INFO("%s: not started", __PRETTY_FUNCTION__);
      return;
    }
    const timespec now = Now();
    ++count;
    running = false;
    elapsed += MicrosecondsBetween(start, now);
  }

  void Reset() {
    elapsed = 0;
    count = 0;
    running = false;
  }

  timespec start{};
  uint32_t elapsed = 0;
  uint32_t count = 0;
  bool running = false;
};

VuPerfCounter::VuPerfCounter() : impl(new VuPerfCounterImpl) {}

VuPerfCounter::~VuPerfCounter() {
  delete impl;
}

void VuPerfCounter::Start() {
  impl->Start();
}

void VuPerfCounter::Stop() {
  impl->Stop();
}

void VuPerfCounter::Reset() {
  impl->Reset();
}

unsigned VuPerfCounter::Elapsed() {
  return impl->elapsed;
}

unsigned VuPerfCounter::Count() {
  return impl->count;
}

void ShowFPS() {
  thread_local uint32_t frames = 0;
  thread_local timespec last{};

  const uint32_t interval = MicrosecondsBetween(last, Now());
  ++frames;
  if (interval <= 999'999) return;

  LogFrames(frames, interval);
  if (LogPerf) {
    LogDrawAndSwap(frames);
    draw_time = 0;
    swap_time = 0;
  }
  frames = 0;
  last = Now();
}

}  // namespace ZIRK
