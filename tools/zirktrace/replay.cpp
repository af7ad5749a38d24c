#include <zirk/kit/pictures.h>

#include <filesystem>

#include "commands.h"
#include "openedtrace.h"

namespace ZIRK::trace {

namespace {

std::string PictureName(const std::string& folder, uint64_t frame) {
  char name[40];
  std::snprintf(name, sizeof name, "frame-%06llu.png", static_cast<unsigned long long>(frame));
  return (std::filesystem::path(folder) / name).string();
}

bool Save(VuBitmap& screen, const std::string& path) {
  if (kit::SavePng(screen, path.c_str())) return true;
  std::fprintf(stderr, "zirktrace: %s: cannot be written\n", path.c_str());
  return false;
}

/// Replays once and counts the requested frames.
bool ReplayOnce(const CommandLine& line, uint64_t& operations, uint64_t& frames) {
  OpenedTrace trace(line.operands[0]);
  Player player(line.backend);
  Id unfinished = Id::None;  // The surface drawn on since the last SwapBuffers().
  uint64_t frame = 1;
  const auto save = [&](VuBitmap* surface) {
    return !surface || line.pngFolder.empty() || frame < line.firstFrame ||
           Save(*surface, PictureName(line.pngFolder, frame));
  };
  for (Record record; trace.Next(record) && record.frame <= line.lastFrame; ++operations) {
    frame = record.frame;
    if (ChangesPixels(record.operation)) unfinished = ObjectOf(record);
    if (record.operation == Operation::SwapBuffers) {
      if (!save(player.Find(ObjectOf(record)))) return false;
      unfinished = Id::None;
      if (frame >= line.firstFrame) ++frames;
    }
    if (!player.Play(record)) {
      trace.Report(record, player);
      return false;
    }
  }
  return save(player.Find(unfinished)) && trace.Report();
}

}  // namespace

int ReplayTrace(const CommandLine& line) {
  std::error_code error;
  if (!line.pngFolder.empty()) std::filesystem::create_directories(line.pngFolder, error);
  uint64_t operations = 0, frames = 0;
  for (int loop = 0; loop < line.loops; ++loop)
    if (!ReplayOnce(line, operations, frames)) return kFailed;
  std::printf("operations: %llu\nframes: %llu\n", static_cast<unsigned long long>(operations),
              static_cast<unsigned long long>(frames));
  return kDone;
}

}  // namespace ZIRK::trace
