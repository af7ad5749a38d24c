#include <algorithm>
#include <ctime>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "commands.h"
#include "openedtrace.h"

namespace ZIRK::trace {

namespace {

double Seconds(clockid_t clock) {
  constexpr double kNanosecond = 1e-9;
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * kNanosecond;
}

/// Returns the time of all threads, since drivers draw in their own threads.
double ProcessorSeconds() {
  return Seconds(CLOCK_PROCESS_CPUTIME_ID);
}

/// Returns the time that one reading of that clock takes.
double CostOfReading() {
  constexpr int kReadings = 10'000;
  const double start = ProcessorSeconds();
  for (int i = 1; i < kReadings; ++i) ProcessorSeconds();
  return (ProcessorSeconds() - start) / kReadings;
}

/// Records of one frame, read in advance so that reading is not measured.
class Batch {
 public:
  /// Replaces the records by the next ones, up to the end of their frame or 16 MiB. Returns false
  /// if no records are left.
  bool Read(OpenedTrace& trace, uint64_t lastFrame) {
    constexpr size_t kEnough = size_t{16} << 20;
    records_.clear();
    bytes_.clear();
    for (Record record; bytes_.size() < kEnough && trace.Next(record);) {
      if (record.frame > lastFrame) break;
      bytes_.insert(bytes_.end(), record.fields.begin(), record.fields.end());
      records_.push_back(record);
      if (record.operation == Operation::SwapBuffers) break;
    }
    size_t begin = 0;
    for (Record& record : records_) {
      record.fields = {bytes_.data() + begin, record.fields.size()};
      begin += record.fields.size();
    }
    return !records_.empty();
  }
  const std::vector<Record>& Records() const { return records_; }

 private:
  std::vector<Record> records_;
  std::vector<uint8_t> bytes_;
};

struct Kind {
  uint64_t count = 0;
  double seconds = 0;  ///< Processor time.
};

/// The measurements of the requested frames.
struct Measured {
  std::string backend;  ///< The backend opened last.
  uint64_t operations = 0, frames = 0;
  double seconds = 0, processorSeconds = 0;
  std::map<Operation, Kind> kinds;
};

/// One replay of a trace, which measures the requested frames.
class Pass {
 public:
  /// Measures one replay. Reads the clocks before and after each batch. If `readsByKind` is set,
  /// also reads the processor's clock after each operation. That takes about as long as the
  /// smallest operations, so it shows each kind's share of the time, but not the total. Prints a
  /// line and returns nullopt if an operation fails or the trace is damaged.
  static std::optional<Measured> Of(const CommandLine& line, bool readsByKind) {
    Pass pass(line, readsByKind);
    if (!pass.Run()) return std::nullopt;
    return std::move(pass.measured_);
  }

 private:
  Pass(const CommandLine& line, bool readsByKind)
      : line_(line), readsByKind_(readsByKind), trace_(line.operands[0]), player_(line.backend) {}

  bool Run() {
    for (Batch batch; batch.Read(trace_, line_.lastFrame);) {
      const bool isMeasured = batch.Records()[0].frame >= line_.firstFrame;
      if (!(isMeasured ? Measure(batch.Records()) : Play(batch.Records()))) return false;
    }
    measured_.backend = player_.Backend();
    return trace_.Report();
  }

  bool Play(std::span<const Record> records) {
    for (const Record& record : records) {
      if (!player_.Play(record)) {
        trace_.Report(record, player_);
        return false;
      }
      // Wait for drawing that no SwapBuffers() ends.
      if (&record == &records.back() && record.operation != Operation::SwapBuffers)
        player_.Finish();
      if (readsByKind_) stamps_.push_back(ProcessorSeconds());
    }
    return true;
  }

  bool Measure(std::span<const Record> records) {
    stamps_.clear();
    stamps_.reserve(records.size());
    const double begin = Seconds(CLOCK_MONOTONIC), processorBegin = ProcessorSeconds();
    const bool isDone = Play(records);
    measured_.processorSeconds += ProcessorSeconds() - processorBegin;
    measured_.seconds += Seconds(CLOCK_MONOTONIC) - begin;
    measured_.operations += records.size();
    measured_.frames += records.back().operation == Operation::SwapBuffers ? 1 : 0;
    for (const Record& record : records) ++measured_.kinds[record.operation].count;
    double before = processorBegin;
    for (size_t i = 0; i < stamps_.size(); before = stamps_[i++])
      measured_.kinds[records[i].operation].seconds += stamps_[i] - before - cost_;
    return isDone;
  }

  const CommandLine& line_;
  const bool readsByKind_;
  const double cost_ = CostOfReading();
  OpenedTrace trace_;
  Player player_;
  std::vector<double> stamps_;  ///< After each operation of the batch.
  Measured measured_;
};

/// The shortest of several runs, divided among the kinds of operation.
class Results {
 public:
  void Add(const Measured& plain, const Measured& byKind) {
    if (best_.kinds.empty()) best_ = plain;
    best_.seconds = std::min(best_.seconds, plain.seconds);
    best_.processorSeconds = std::min(best_.processorSeconds, plain.processorSeconds);
    for (const auto& [operation, kind] : byKind.kinds)
      best_.kinds[operation].seconds += std::max(kind.seconds, 0.0);
  }
  Measured Take() {
    double sum = 0;
    for (const auto& [operation, kind] : best_.kinds) sum += kind.seconds;
    for (auto& [operation, kind] : best_.kinds)
      kind.seconds *= sum > 0 ? best_.processorSeconds / sum : 0;
    return std::move(best_);
  }

 private:
  Measured best_;
};

using Row = std::pair<Operation, Kind>;

std::vector<Row> Sorted(const Measured& measured) {
  std::vector<Row> rows(measured.kinds.begin(), measured.kinds.end());
  std::stable_sort(rows.begin(), rows.end(),
                   [](const Row& a, const Row& b) { return a.second.seconds > b.second.seconds; });
  return rows;
}

double Rate(uint64_t count, double seconds) {
  return seconds > 0 ? static_cast<double>(count) / seconds : 0;
}

constexpr double kMillisecond = 1e-3, kMicrosecond = 1e-6;

void PrintTable(const Measured& m) {
  std::printf("backend: %s\noperations: %llu\nframes: %llu\nseconds: %.9f\n", m.backend.c_str(),
              static_cast<unsigned long long>(m.operations),
              static_cast<unsigned long long>(m.frames), m.seconds);
  std::printf("processor-seconds: %.9f\noperations-per-second: %.1f\nframes-per-second: %.1f\n\n",
              m.processorSeconds, Rate(m.operations, m.seconds), Rate(m.frames, m.seconds));
  std::printf("%-26s%10s%14s%12s%8s\n", "operation", "count", "processor-ms", "us each", "share");
  for (const auto& [operation, kind] : Sorted(m))
    std::printf("%-26s%10llu%14.3f%12.3f%7.1f%%\n", NameOf(operation),
                static_cast<unsigned long long>(kind.count), kind.seconds / kMillisecond,
                kind.seconds / static_cast<double>(kind.count) / kMicrosecond,
                100 * kind.seconds / std::max(m.processorSeconds, kMicrosecond));
}

void PrintJson(const Measured& m) {
  std::printf("{\n  \"backend\": \"%s\",\n  \"operations\": %llu,\n  \"frames\": %llu,\n",
              m.backend.c_str(), static_cast<unsigned long long>(m.operations),
              static_cast<unsigned long long>(m.frames));
  std::printf("  \"seconds\": %.9f,\n  \"processor-seconds\": %.9f,\n", m.seconds,
              m.processorSeconds);
  std::printf("  \"operations-per-second\": %.3f,\n  \"frames-per-second\": %.3f,\n  \"kinds\": [",
              Rate(m.operations, m.seconds), Rate(m.frames, m.seconds));
  const char* separator = "\n";
  for (const auto& [operation, kind] : Sorted(m)) {
    std::printf("%s    {\"operation\": \"%s\", \"count\": %llu, \"processor-ms\": %.6f}", separator,
                NameOf(operation), static_cast<unsigned long long>(kind.count),
                kind.seconds / kMillisecond);
    separator = ",\n";
  }
  std::printf("\n  ]\n}\n");
}

}  // namespace

int MeasureReplay(const CommandLine& line) {
  Results results;
  for (int loop = 0; loop < line.loops; ++loop) {
    const auto plain = Pass::Of(line, false);
    const auto byKind = plain ? Pass::Of(line, true) : std::nullopt;
    if (!byKind) return kFailed;
    results.Add(*plain, *byKind);
  }
  const Measured measured = results.Take();
  line.isJson ? PrintJson(measured) : PrintTable(measured);
  return kDone;
}

}  // namespace ZIRK::trace
