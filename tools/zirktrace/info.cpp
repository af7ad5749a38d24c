#include <zirk/utf8.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "openedtrace.h"
#include "support/formatname.h"
#include "visit.h"

namespace ZIRK::trace {

namespace {

void Print(const char* key, uint64_t value) {
  std::printf("%s: %llu\n", key, static_cast<unsigned long long>(value));
}

/// The use of a surface in a trace.
struct SurfaceUse {
  std::string kind;  ///< Size and format.
  VuPixelFormat format{};
  uint64_t bytes = 0;
  uint64_t drawn = 0;        ///< Operations that may have changed its pixels.
  uint64_t unusedLocks = 0;  ///< Locks for writing without a write: the program only read.
  bool isRead = false;       ///< Whether a drawing operation reads it, or it is a screen.
  bool isOpen = true;

  bool IsNeverRead() const { return !isRead && unusedLocks == 0; }
};

class Summary {
 public:
  void Count(const Record& record);
  void Print() const;

 private:
  void CountObject(const Record& record, Id object);
  void CountSurface(const CreatedValue& created, bool isScreen);
  void CountUpload(Id surface, const VuRect& part);
  void CountGlyphs(Id font, const char* text);
  void PrintSurfaces() const;

  uint64_t operations_ = 0, frames_ = 0, threads_ = 0, time_ = 0;
  uint64_t fonts_ = 0, glyphs_ = 0;
  std::set<std::pair<Id, unsigned>> distinctGlyphs_;
  uint64_t uploads_ = 0, uploadBytes_ = 0;
  uint64_t contents_ = 0, contentBytes_ = 0;
  uint64_t bytes_ = 0, mostBytes_ = 0;  ///< Of the surfaces that exist at a time.
  std::map<Id, SurfaceUse> surfaces_;
  std::map<Operation, uint64_t> kinds_;
};

void Summary::CountSurface(const CreatedValue& created, bool isScreen) {
  if (created.id == Id::None) return;
  SurfaceUse use;
  use.kind = std::to_string(created.width) + " x " + std::to_string(created.height) + ' ' +
             support::NameOf(created.format);
  use.format = created.format;
  use.bytes = uint64_t{BytesPerPixel(created.format)} * static_cast<uint32_t>(created.width) *
              static_cast<uint32_t>(created.height);
  use.isRead = isScreen;
  bytes_ += use.bytes;
  mostBytes_ = std::max(mostBytes_, bytes_);
  surfaces_.insert_or_assign(created.id, std::move(use));
}

void Summary::CountUpload(Id surface, const VuRect& part) {
  const auto found = surfaces_.find(surface);
  if (found == surfaces_.end()) return;
  ++uploads_;
  uploadBytes_ += uint64_t{BytesPerPixel(found->second.format)} *
                  static_cast<uint32_t>(part.width) * static_cast<uint32_t>(part.height);
}

void Summary::CountGlyphs(Id font, const char* text) {
  for (int length = 0; text && *text; text += std::max(length, 1)) {
    const unsigned character = GetUtf8Char(text, &length);
    if (length == 0) continue;
    ++glyphs_;
    distinctGlyphs_.emplace(font, character);
  }
}

/// Counts the operations of a surface.
void Summary::CountObject(const Record& record, Id object) {
  const auto found = surfaces_.find(object);
  if (found == surfaces_.end()) return;
  SurfaceUse& use = found->second;
  if (ChangesPixels(record.operation)) ++use.drawn;
  if (record.operation == Operation::GetPixels) use.isRead = true;
  if (record.operation == Operation::Lock) ++use.unusedLocks;
  if (record.operation == Operation::PixelsWritten && use.unusedLocks > 0) --use.unusedLocks;
  if (record.operation == Operation::Close && std::exchange(use.isOpen, false)) bytes_ -= use.bytes;
}

void Summary::Count(const Record& record) {
  ++operations_;
  ++kinds_[record.operation];
  threads_ = std::max<uint64_t>(threads_, uint64_t{record.thread} + 1);
  time_ = record.time;
  if (record.operation == Operation::SwapBuffers) ++frames_;
  if (record.operation == Operation::MakeFont) ++fonts_;
  const Id object = ObjectOf(record);
  if (record.operation == Operation::Content) {
    ++contents_;
    contentBytes_ += record.fields.size() - sizeof object;
  }
  CountObject(record, object);
  const bool isUpload =
      record.operation == Operation::SetPixels || record.operation == Operation::PixelsWritten;
  Id font = Id::None;
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, Source> || std::is_same_v<W, Mask>) {
      const auto source = surfaces_.find(value);
      if (source != surfaces_.end()) source->second.isRead = true;
    }
    if constexpr (std::is_same_v<W, Font>) font = value;
    if constexpr (std::is_same_v<W, Text>)
      if (font != Id::None) CountGlyphs(font, value);
    if constexpr (std::is_same_v<W, VuRect>)
      if (isUpload) CountUpload(object, value);
    if constexpr (std::is_same_v<Value<W>, CreatedValue>)
      CountSurface(value, std::is_same_v<W, NewScreen>);
  });
}

/// Prints the surfaces by kind, those that take the most bytes first, then the surfaces that are
/// never read.
void Summary::PrintSurfaces() const {
  std::map<std::string, std::pair<uint64_t, uint64_t>> byKind;  ///< Bytes and number.
  for (const auto& [id, use] : surfaces_) {
    auto& [bytes, count] = byKind[use.kind];
    bytes += use.bytes;
    ++count;
  }
  std::vector<std::pair<std::pair<uint64_t, uint64_t>, std::string>> kinds;
  kinds.reserve(byKind.size());
  for (const auto& [kind, sums] : byKind) kinds.emplace_back(sums, kind);
  std::sort(kinds.rbegin(), kinds.rend());
  for (const auto& [sums, kind] : kinds)
    std::printf("surface: %s, %llu made, %llu bytes\n", kind.c_str(),
                static_cast<unsigned long long>(sums.second),
                static_cast<unsigned long long>(sums.first));
  for (const auto& [id, use] : surfaces_)
    if (use.IsNeverRead())
      std::printf("never-read: @%u, %s, %llu bytes, drawn on %llu times\n",
                  static_cast<unsigned>(id), use.kind.c_str(),
                  static_cast<unsigned long long>(use.bytes),
                  static_cast<unsigned long long>(use.drawn));
}

void Summary::Print() const {
  using trace::Print;
  constexpr double kPerSecond = 1e9;
  Print("operations", operations_);
  Print("frames", frames_);
  std::printf("seconds: %.3f\n", static_cast<double>(time_) / kPerSecond);
  Print("threads", threads_);
  Print("fonts", fonts_);
  Print("glyphs", glyphs_);
  Print("distinct-glyphs", distinctGlyphs_.size());
  Print("uploads", uploads_);
  Print("upload-bytes", uploadBytes_);
  Print("contents", contents_);
  Print("content-bytes", contentBytes_);
  Print("surfaces", surfaces_.size());
  Print("most-surface-bytes", mostBytes_);
  const auto neverRead = std::count_if(surfaces_.begin(), surfaces_.end(), [](const auto& surface) {
    return surface.second.IsNeverRead();
  });
  Print("surfaces-never-read", static_cast<uint64_t>(neverRead));
  for (const auto& [operation, count] : kinds_) Print(NameOf(operation), count);
  PrintSurfaces();
}

}  // namespace

int ShowTrace(const CommandLine& line) {
  OpenedTrace trace(line.operands[0]);
  Summary summary;
  for (Record record; trace.Next(record);) summary.Count(record);
  if (!trace.Report()) return kFailed;
  summary.Print();
  return kDone;
}

}  // namespace ZIRK::trace
