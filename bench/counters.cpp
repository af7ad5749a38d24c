#include "counters.h"

#include <linux/perf_event.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ZIRK::bench {

namespace {

int OpenCounter(uint64_t what, int leader) {
  perf_event_attr attributes = {};
  attributes.size = sizeof attributes;
  attributes.type = PERF_TYPE_HARDWARE;
  attributes.config = what;
  attributes.disabled = leader < 0;
  attributes.exclude_kernel = 1;
  attributes.exclude_hv = 1;
  attributes.read_format = PERF_FORMAT_GROUP;
  return static_cast<int>(syscall(SYS_perf_event_open, &attributes, 0, -1, leader, 0));
}

}  // namespace

Counters::Counters() : cycles_(OpenCounter(PERF_COUNT_HW_CPU_CYCLES, -1)) {
  if (cycles_ >= 0) instructions_ = OpenCounter(PERF_COUNT_HW_INSTRUCTIONS, cycles_);
}

Counters::~Counters() {
  if (instructions_ >= 0) close(instructions_);
  if (cycles_ >= 0) close(cycles_);
}

void Counters::Start() {
  if (!Works()) return;
  ioctl(cycles_, PERF_EVENT_IOC_RESET, PERF_IOC_FLAG_GROUP);
  ioctl(cycles_, PERF_EVENT_IOC_ENABLE, PERF_IOC_FLAG_GROUP);
}

void Counters::Stop() {
  if (!Works()) return;
  ioctl(cycles_, PERF_EVENT_IOC_DISABLE, PERF_IOC_FLAG_GROUP);
  uint64_t group[3] = {};  // how many there are, and each of them
  if (read(cycles_, group, sizeof group) != sizeof group) return;
  counted_[0] = group[1];
  counted_[1] = group[2];
}

}  // namespace ZIRK::bench
