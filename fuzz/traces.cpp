// A trace, read, replayed and looked at. The input is the trace's records, or a file with them.
// Operations that cannot be carried out are skipped, so that the others are reached.

#include <zstd.h>

#include <sstream>
#include <string>

#include "input.h"
#include "tools/zirktrace/hints.h"
#include "tools/zirktrace/player.h"
#include "tools/zirktrace/tracefile.h"
#include "tools/zirktrace/writecounts.h"

using namespace ZIRK;
using namespace ZIRK::trace;

namespace {

/// Larger surfaces and fonts would only take time.
constexpr int64_t kMostPixels = 1 << 18;
constexpr int kLargestFont = 96;

bool IsSmall(int64_t width, int64_t height) {
  return width <= kMostPixels && height <= kMostPixels && width * height <= kMostPixels;
}

bool IsWorthPlaying(const Record& record) {
  Decoder fields(record.fields);
  Id unused{};
  int number[4]{};
  const auto read = [&](auto&... values) { (Transfer(fields, values), ...); };
  switch (record.operation) {
    case Operation::CreateBitmap:
      read(unused, number[0], number[1]);
      return IsSmall(number[0], number[1]);
    case Operation::CreateScreen:
    case Operation::CreateScreenAs: {
      CreatedValue created;
      Decoder end(record.fields.last(std::min<size_t>(record.fields.size(), 16)));
      Transfer(end, created);
      return IsSmall(created.width, created.height);
    }
    case Operation::CreateFittedFromFile:
    case Operation::CreateFittedFromMemory:
      return false;
    case Operation::MakeFont:
      read(unused, unused, number[0], number[1]);
      return number[1] >= 0 && number[1] <= kLargestFont;
    case Operation::StyleFont:
      read(unused, number[0], number[1], number[2], unused, number[3], number[3]);
      return number[3] >= 0 && number[3] <= kLargestFont;
    default:
      return true;
  }
}

void Replay(const std::string& file) {
  std::istringstream stream(file);
  TraceReader reader(stream);
  Player player("FB");
  Coverage coverage(player);
  Hints hints(player, coverage);
  FrameCounts counts;
  for (Record record; reader.Next(record);) {
    if (!IsWorthPlaying(record)) continue;
    coverage.Follow(record);
    counts.Count(record, player, coverage);
    hints.Before(record);
    player.Play(record);
    hints.After(record);
  }
  hints.Found();
}

/// A file with these records.
std::string Packed(const uint8_t* data, size_t size) {
  std::string file(kFileMagic, sizeof kFileMagic);
  file.append(reinterpret_cast<const char*>(&kFormatVersion), sizeof kFormatVersion);
  std::string block(ZSTD_compressBound(size), '\0');
  block.resize(ZSTD_compress(block.data(), block.size(), data, size, 1));
  return file + block;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Context();  // Sets the environment.
  Replay(std::string(data, data + size));
  Replay(Packed(data, size));
  return 0;
}
