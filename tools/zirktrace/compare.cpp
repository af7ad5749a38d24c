#include <filesystem>

#include "commands.h"
#include "comparison.h"
#include "openedtrace.h"
#include "printer.h"

namespace ZIRK::trace {

namespace {

/// One trace, replayed on two backends.
class Pair {
 public:
  explicit Pair(const CommandLine& line)
      : line_(line),
        trace_(line.operands[2]),
        comparison_(line.operands[0], line.operands[1], line.worst) {}

  /// Reads the next record. Returns false at the end or after an error; see IsSound().
  bool Next(Record& record) {
    return isSound_ && trace_.Next(record) && record.frame <= line_.lastFrame;
  }
  bool Play(const Record& record) {
    if (comparison_.Play(record)) return true;
    trace_.Report(record, comparison_.Failed());
    return isSound_ = false;
  }
  /// Returns whether no error occurred. Call it once, at the end.
  bool IsSound() const { return isSound_ && trace_.Report(); }

  Comparison& Players() { return comparison_; }

  /// Writes both surfaces of this number. Prints a line and returns false on failure.
  bool Save(Id surface) {
    const auto [a, b] = comparison_.Find(surface);
    const bool isFirstSaved = SaveOne(a, line_.operands[0], "-1");
    return SaveOne(b, line_.operands[1], "-2") && isFirstSaved;
  }

 private:
  /// `which` is part of the name, since the names of the backends may be the same.
  bool SaveOne(VuBitmap* bitmap, const std::string& backend, const char* which) {
    const std::string path = (std::filesystem::path(line_.pngFolder) /
                              ("differs" + std::string(which) + "-" + backend + ".png"))
                                 .string();
    if (bitmap && kit::SavePng(*bitmap, path.c_str())) {
      std::printf("picture: %s\n", path.c_str());
      return true;
    }
    std::fprintf(stderr, "zirktrace: %s: cannot be written\n", path.c_str());
    return false;
  }

  const CommandLine& line_;
  OpenedTrace trace_;
  Comparison comparison_;
  bool isSound_ = true;
};

/// Returns the first frame at whose end a surface drawn on in it differs, or 0 if there is none.
uint64_t FindFrame(Pair& pair, uint64_t firstFrame) {
  uint64_t frame = 0;
  for (Record record; pair.Next(record);) {
    if (record.frame >= firstFrame) frame = record.frame;
    if (pair.Players().DiffersBefore(record, frame > 0)) return frame;
    if (!pair.Play(record)) return 0;
  }
  return frame > 0 && pair.Players().DiffersAtEnd() ? frame : 0;
}

/// Prints the first operation of a frame after which the backends differ, and writes both pictures.
bool ShowDifference(Pair& pair, uint64_t frame) {
  for (Record record; pair.Next(record) && record.frame <= frame;) {
    const bool isOfFrame = record.frame == frame && ChangesPixels(record.operation);
    if (!pair.Play(record)) return false;
    if (!isOfFrame) continue;
    const auto difference = pair.Players().Differ(ObjectOf(record));
    if (!difference) continue;
    std::printf("operation: %s\nworst: %d at %d,%d\nmean: %.4f\n", ToLine(record).c_str(),
                difference->worst, difference->worstAt.x, difference->worstAt.y, difference->mean);
    return pair.Save(ObjectOf(record));
  }
  std::printf("operation: none alone\n");
  return true;
}

}  // namespace

int CompareBackends(const CommandLine& line) {
  std::error_code error;
  if (!line.pngFolder.empty()) std::filesystem::create_directories(line.pngFolder, error);
  uint64_t frame = 0;
  {
    Pair pair(line);
    frame = FindFrame(pair, line.firstFrame);
    if (frame == 0) {
      if (!pair.IsSound()) return kFailed;
      std::puts("the same");
      return kDone;
    }
  }
  std::printf("frame: %llu\n", static_cast<unsigned long long>(frame));
  Pair pair(line);
  return ShowDifference(pair, frame) ? kDiffers : kFailed;
}

}  // namespace ZIRK::trace
