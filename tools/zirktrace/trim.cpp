#include <algorithm>
#include <map>

#include "commands.h"
#include "comparison.h"
#include "openedtrace.h"
#include "visit.h"

namespace ZIRK::trace {

namespace {

/// The most that can be trimmed.
constexpr size_t kMostBytes = size_t{1} << 30;

/// A record that is kept in memory.
struct KeptRecord {
  Record record;  ///< Its fields refer to the member below.
  std::vector<uint8_t> fields;
  /// Earlier records that create the objects and contents that this one names.
  std::vector<size_t> needs;
  bool isDefinition = false;  ///< Creates an object or content itself.
};

/// The indices of records that are kept or dropped together.
using Group = std::vector<size_t>;

/// Returns the number of records up to the first difference. Prints a line and returns 0 if the
/// backends do not differ or the trace cannot be replayed.
uint64_t FindDifference(const CommandLine& line) {
  OpenedTrace trace(line.operands[2]);
  Comparison comparison(line.operands[0], line.operands[1], line.worst);
  uint64_t count = 0;
  for (Record record; trace.Next(record); ++count) {
    if (comparison.DiffersBefore(record)) return count;
    if (comparison.Play(record)) continue;
    trace.Report(record, comparison.Failed());
    return 0;
  }
  if (!trace.Report()) return 0;
  if (comparison.DiffersAtEnd()) return count;
  std::fprintf(stderr, "zirktrace: %s: %s and %s draw the same\n", line.operands[2].c_str(),
               line.operands[0].c_str(), line.operands[1].c_str());
  return 0;
}

/// A search for the fewest records of a trace after which two backends differ.
class Trimmer {
 public:
  explicit Trimmer(const CommandLine& line) : line_(line) {}

  /// Reads `count` records. Prints a line and returns false if they are too large.
  bool Read(uint64_t count);
  void Trim();
  /// Writes the kept records. Prints a line and returns false if the file cannot be written.
  bool Write() const;
  size_t Count() const { return static_cast<size_t>(std::count(kept_.begin(), kept_.end(), true)); }

 private:
  void FindNeeds(KeptRecord& record);
  std::vector<Group> Frames() const;
  void Reduce(std::vector<Group>& groups);
  bool Differs(const std::vector<Group>& groups);

  const CommandLine& line_;
  std::vector<KeptRecord> records_;
  std::map<Id, size_t> definitions_;  ///< The first record that names an Id.
  std::vector<bool> kept_;            ///< The last selection that still differs.
};

bool Trimmer::Read(uint64_t count) {
  OpenedTrace trace(line_.operands[2]);
  size_t size = 0;
  for (Record record; records_.size() < count && trace.Next(record);) {
    size += record.fields.size();
    if (size > kMostBytes) {
      std::fprintf(stderr, "zirktrace: %s: too large to trim\n", line_.operands[2].c_str());
      return false;
    }
    KeptRecord kept{record, {record.fields.begin(), record.fields.end()}, {}, false};
    FindNeeds(kept);
    records_.push_back(std::move(kept));
  }
  for (KeptRecord& kept : records_) kept.record.fields = kept.fields;
  return true;
}

/// Finds the records that `kept` needs. A trace creates objects before it uses them, so the first
/// record with a number creates its object.
void Trimmer::FindNeeds(KeptRecord& kept) {
  const auto name = [&](Id id) {
    if (id == Id::None) return;
    const auto [found, isNew] = definitions_.try_emplace(id, records_.size());
    kept.isDefinition |= isNew;
    if (found->second != records_.size()) kept.needs.push_back(found->second);
  };
  VisitFields(kept.record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<Value<W>, Id>) name(value);
    if constexpr (std::is_same_v<W, File>) name(value.content);
    if constexpr (std::is_same_v<Value<W>, CreatedValue>) name(value.id);
  });
}

/// Returns the records that are not definitions, grouped by frame.
std::vector<Group> Trimmer::Frames() const {
  std::map<uint64_t, Group> frames;
  for (size_t i = 0; i < records_.size(); ++i)
    if (!records_[i].isDefinition) frames[records_[i].record.frame].push_back(i);
  std::vector<Group> groups;
  groups.reserve(frames.size());
  for (auto& [frame, group] : frames) groups.push_back(std::move(group));
  return groups;
}

/// Replays these records and those that they need. Returns whether the backends differ.
bool Trimmer::Differs(const std::vector<Group>& groups) {
  std::vector<bool> isKept(records_.size());
  for (const Group& group : groups)
    for (const size_t i : group) isKept[i] = true;
  for (size_t i = records_.size(); i-- > 0;)
    if (isKept[i])
      for (const size_t needed : records_[i].needs) isKept[needed] = true;
  Comparison comparison(line_.operands[0], line_.operands[1], line_.worst);
  bool differs = false;
  for (size_t i = 0; i < records_.size() && !differs; ++i) {
    if (!isKept[i]) continue;
    differs = comparison.DiffersBefore(records_[i].record);
    if (!differs && !comparison.Play(records_[i].record)) return false;
  }
  if (!differs && !comparison.DiffersAtEnd()) return false;
  kept_ = std::move(isKept);
  return true;
}

/// Drops the groups that the difference does not need: all, then halves, quarters and so on, and
/// finally single groups until none can be dropped. Tries the last groups first, so that the first
/// difference remains.
void Trimmer::Reduce(std::vector<Group>& groups) {
  for (size_t size = groups.size(); size > 0;) {
    const size_t before = groups.size();
    for (size_t end = groups.size(); end > 0;) {
      const size_t begin = end > size ? end - size : 0;
      const auto at = [&](size_t i) { return groups.begin() + static_cast<ptrdiff_t>(i); };
      std::vector<Group> fewer(groups.begin(), at(begin));
      fewer.insert(fewer.end(), at(end), groups.end());
      if (Differs(fewer)) groups = std::move(fewer);
      end = begin;
    }
    if (size > 1 || groups.size() == before) size /= 2;
  }
}

void Trimmer::Trim() {
  kept_.assign(records_.size(), true);
  std::vector<Group> frames = Frames();
  Reduce(frames);
  std::vector<Group> single;
  for (const Group& frame : frames)
    for (const size_t i : frame) single.push_back({i});
  Reduce(single);
}

bool Trimmer::Write() const {
  const auto writer = TraceWriter::Create(line_.output);
  bool isWritten = writer != nullptr;
  for (size_t i = 0; i < records_.size() && isWritten; ++i) {
    if (!kept_[i]) continue;
    const auto& [record, fields, needs, isDefinition] = records_[i];
    RecordHead head{static_cast<uint32_t>(kHeadSize - sizeof head.length + fields.size()),
                    record.operation, record.thread, record.time};
    Encoder encoder;
    Transfer(encoder, head);
    isWritten = writer->Add(encoder.Bytes()) && writer->Add(fields);
  }
  if (isWritten && writer->Flush()) return true;
  std::fprintf(stderr, "zirktrace: %s: cannot be written\n", line_.output.c_str());
  return false;
}

}  // namespace

int TrimTrace(const CommandLine& line) {
  const uint64_t count = FindDifference(line);
  Trimmer trimmer(line);
  if (count == 0 || !trimmer.Read(count)) return kFailed;
  trimmer.Trim();
  if (!trimmer.Write()) return kFailed;
  std::printf("operations: %zu of %llu\n", trimmer.Count(), static_cast<unsigned long long>(count));
  return kDone;
}

}  // namespace ZIRK::trace
