#include <algorithm>
#include <map>
#include <set>

#include "commands.h"
#include "fields.h"
#include "openedtrace.h"
#include "printer.h"

namespace ZIRK::trace {

int DumpTrace(const CommandLine& line) {
  OpenedTrace trace(line.operands[0]);
  for (Record record; trace.Next(record) && record.frame <= line.lastFrame;)
    if (record.frame >= line.firstFrame) std::puts(ToLine(record).c_str());
  return trace.Report() ? kDone : kFailed;
}

namespace {

/// What is counted of a trace.
struct Summary {
  uint64_t operations = 0, frames = 0, threads = 0, time = 0;
  uint64_t fonts = 0, contents = 0, contentBytes = 0;
  uint64_t bytes = 0, mostBytes = 0;  ///< Of the surfaces that there are at one time.
  std::map<Operation, uint64_t> kinds;
  std::map<Id, uint64_t> surfaces;
  std::set<Id> read;  ///< Surfaces that something was drawn from, and screens.
  uint64_t neverRead = 0;
};

void CountSurface(Summary& summary, const CreatedValue& created) {
  if (created.id == Id::None) return;
  const uint64_t bytes = uint64_t{BytesPerPixel(created.format)} *
                         static_cast<uint32_t>(created.width) *
                         static_cast<uint32_t>(created.height);
  summary.surfaces[created.id] = bytes;
  summary.bytes += bytes;
  summary.mostBytes = std::max(summary.mostBytes, summary.bytes);
}

void CountClosed(Summary& summary, Id id) {
  const auto found = summary.surfaces.find(id);
  if (found == summary.surfaces.end()) return;
  summary.bytes -= found->second;
  if (summary.read.erase(id) == 0) ++summary.neverRead;
  summary.surfaces.erase(found);
}

/// Counts what the fields of an operation of an object say.
template <class Result, class... W>
void CountFields(Summary& summary, Decoder& decoder) {
  const auto take = [&]<class P>(P*) {
    Value<P> value{};
    Transfer(decoder, value);
    if constexpr (std::is_same_v<P, Source> || std::is_same_v<P, Mask>) summary.read.insert(value);
    if constexpr (std::is_same_v<P, NewScreen>) summary.read.insert(value.id);
    if constexpr (std::is_same_v<Value<P>, CreatedValue>) CountSurface(summary, value);
  };
  (take(static_cast<W*>(nullptr)), ...);
  take(static_cast<Result*>(nullptr));
}

void Count(Summary& summary, const Record& record) {
  ++summary.operations;
  ++summary.kinds[record.operation];
  summary.threads = std::max<uint64_t>(summary.threads, uint64_t{record.thread} + 1);
  summary.time = record.time;
  Decoder decoder(record.fields);
  if (record.operation == Operation::SwapBuffers) ++summary.frames;
  if (record.operation == Operation::MakeFont) ++summary.fonts;
  const Id object = ObjectOf(record);
  if (record.operation == Operation::Content) {
    ++summary.contents;
    summary.contentBytes += record.fields.size() - sizeof object;
  }
  if (record.operation == Operation::Close) CountClosed(summary, object);
  if (record.operation == Operation::GetPixels) summary.read.insert(object);
  if (!HasObject(record.operation)) return;
  Id unused{};
  Transfer(decoder, unused);
  WithFields(record.operation,
             [&]<class Result, class... W>() { CountFields<Result, W...>(summary, decoder); });
}

void Print(const char* key, uint64_t value) {
  std::printf("%s: %llu\n", key, static_cast<unsigned long long>(value));
}

}  // namespace

int ShowTrace(const CommandLine& line) {
  OpenedTrace trace(line.operands[0]);
  Summary summary;
  for (Record record; trace.Next(record);) Count(summary, record);
  if (!trace.Report()) return kFailed;
  for (const auto& [id, bytes] : summary.surfaces)
    if (summary.read.count(id) == 0) ++summary.neverRead;
  constexpr double kPerSecond = 1e9;
  Print("operations", summary.operations);
  Print("frames", summary.frames);
  std::printf("seconds: %.3f\n", static_cast<double>(summary.time) / kPerSecond);
  Print("threads", summary.threads);
  Print("fonts", summary.fonts);
  Print("contents", summary.contents);
  Print("content-bytes", summary.contentBytes);
  Print("most-surface-bytes", summary.mostBytes);
  Print("surfaces-never-read", summary.neverRead);
  for (const auto& [operation, count] : summary.kinds) Print(NameOf(operation), count);
  return kDone;
}

}  // namespace ZIRK::trace
