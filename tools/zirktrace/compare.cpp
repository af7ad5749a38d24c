#include <zirk/kit/pictures.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>

#include "commands.h"
#include "openedtrace.h"
#include "printer.h"

namespace ZIRK::trace {

namespace {

/// One trace, replayed by two backends.
class Pair {
 public:
  explicit Pair(const CommandLine& line)
      : line_(line), trace_(line.operands[2]), a_(line.operands[0]), b_(line.operands[1]) {}

  /// False at the end, and where something cannot be carried out: IsSound() tells.
  bool Next(Record& record) {
    return isSound_ && trace_.Next(record) && record.frame <= line_.lastFrame;
  }
  bool Play(const Record& record) { return PlayBy(a_, record) && PlayBy(b_, record); }
  /// To be asked once, at the end.
  bool IsSound() const { return isSound_ && trace_.Report(); }

  bool IsSurface(Id id) { return a_.Find(id) != nullptr; }
  /// Nothing where the surfaces of this number agree, or are not there any more.
  std::optional<kit::Difference> Differ(Id surface) {
    VuBitmap *const a = a_.Find(surface), *const b = b_.Find(surface);
    if (!a || !b) return std::nullopt;
    const auto difference = kit::Compare(*a, *b);
    if (difference && difference->worst <= line_.worst) return std::nullopt;
    return difference ? difference : kit::Difference{255, 255, {}};
  }

  /// Writes both surfaces of this number. False, with a line, where that cannot be.
  bool Save(Id surface) {
    const bool isFirstSaved = SaveOne(a_, surface, line_.operands[0], "-1");
    return SaveOne(b_, surface, line_.operands[1], "-2") && isFirstSaved;
  }

 private:
  bool PlayBy(Player& player, const Record& record) {
    if (player.Play(record)) return true;
    trace_.Report(record, player);
    return isSound_ = false;
  }

  /// The names of the backends may be the same.
  bool SaveOne(Player& player, Id surface, const std::string& backend, const char* which) {
    VuBitmap* const bitmap = player.Find(surface);
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
  Player a_, b_;
  bool isSound_ = true;
};

/// The first frame at whose end a surface differs that was drawn on in it; 0 if none does.
uint64_t FindFrame(Pair& pair, uint64_t firstFrame) {
  std::set<Id> drawn;
  uint64_t frame = 0;
  const auto differs = [&] {
    return std::any_of(drawn.begin(), drawn.end(), [&](Id id) { return pair.Differ(id); });
  };
  // What is about to go is looked at, a surface alone, a context with its surfaces.
  const auto goesDifferent = [&](Id id) {
    return pair.IsSurface(id) ? drawn.count(id) > 0 && pair.Differ(id) : differs();
  };
  for (Record record; pair.Next(record);) {
    const Id object = ObjectOf(record);
    if (record.frame >= firstFrame) frame = record.frame;
    if (ChangesPixels(record.operation)) drawn.insert(object);
    const bool isShown = record.operation == Operation::SwapBuffers;
    const bool goes = record.operation == Operation::Close;
    if (frame > 0 && ((isShown && differs()) || (goes && goesDifferent(object)))) return frame;
    if (isShown) drawn.clear();
    if (goes) drawn.erase(object);
    if (!pair.Play(record)) return 0;
  }
  return frame > 0 && differs() ? frame : 0;
}

/// Says after which operation of a frame the backends differ first, and writes both pictures.
bool ShowDifference(Pair& pair, uint64_t frame) {
  for (Record record; pair.Next(record) && record.frame <= frame;) {
    const bool isOfFrame = record.frame == frame && ChangesPixels(record.operation);
    if (!pair.Play(record)) return false;
    if (!isOfFrame) continue;
    const auto difference = pair.Differ(ObjectOf(record));
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
