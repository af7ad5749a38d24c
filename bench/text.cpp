// Text of cached glyphs, measured and drawn, and what it costs to open a font.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <zirk/vufont.h>

#include <string>
#include <string_view>

#include "measure.h"
#include "textpeer.h"

namespace ZIRK::bench {

namespace {

constexpr std::string_view kWords =
    "The quick brown fox jumps over the lazy dog. AVATAR, Tomorrow & Yesterday: 0123456789 "
    "(Pack my box with five dozen liquor jugs!) Waltz, bad nymph, for quick jigs vex; 47% "
    "To. ";

}  // namespace

std::string TextFont() {
  return ZIRK_BENCH_FONT;
}

TextLines MakeTextLines() {
  TextLines lines;
  for (int i = 0; i < 30; ++i) {
    std::string text;
    for (size_t c = 0; c < kLineLength; ++c)
      text += kWords[(static_cast<size_t>(i) * 29 + c) % kWords.size()];
    lines.push_back({std::move(text), 20 + 7 * i, 10 + 23 * i});
  }
  return lines;
}

std::string MakeParagraph() {
  std::string paragraph;
  while (paragraph.size() < kParagraphLength) paragraph += kWords;
  paragraph.resize(kParagraphLength);
  return paragraph;
}

std::string OpenedCharacters() {
  std::string characters;
  for (int c = 32; c < 32 + kOpenedGlyphs; ++c) characters += static_cast<char>(c);
  return characters;
}

namespace {

template <typename Work>
void Enlist(const char* operation, const TextPeer& peer, int items, Work work) {
  benchmark::RegisterBenchmark(
      (std::string(operation) + "/" + peer.Name()).c_str(),
      [items, work](benchmark::State& state) { Measure(state, items, work); })
      ->Unit(benchmark::kMicrosecond);
}

/// All threads measure with one font.
void MeasureTogether(benchmark::State& state) {
  static const TextLines lines = MakeTextLines();
  static const VuFont font(ZIRK_BENCH_FONT, 0, kTextSize);
  for (auto _ : state)
    for (const TextLine& line : lines)
      benchmark::DoNotOptimize(font.GetOneLineWidth(line.text.c_str()));
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(lines.size()));
}

/// What the caches take for a character and its glyph, in bytes: each has a glyph of its own, since
/// no two outlines share one, and a code point of its own.
void MeasureCache(benchmark::State& state) {
  constexpr uint32_t kGlyphs = 10000;
  for (auto _ : state) {
    VuFont font(ZIRK_BENCH_FONT, 0, kTextSize);
    font.GetOneLineWidth("A");
    const size_t before = mallinfo2().uordblks;
    for (uint32_t i = 0; i < kGlyphs; ++i) {
      font.SetOutlineType(static_cast<VuFont::OutlineType>(1 + i % 3));
      font.SetOutlineThickness(static_cast<float>(1 + i / 3) / 64);
      const uint32_t code = 0x10000 + i;
      const char text[] = {char(0xF0 | code >> 18), char(0x80 | (code >> 12 & 63)),
                           char(0x80 | (code >> 6 & 63)), char(0x80 | (code & 63)), 0};
      font.GetOneLineWidth(text);
    }
    state.counters["bytes"] = static_cast<double>(mallinfo2().uordblks - before) / kGlyphs;
  }
}

}  // namespace

void RegisterText(const TextPeers& peers) {
  static const TextLines lines = MakeTextLines();
  static const std::string paragraph = MakeParagraph();
  const int count = static_cast<int>(lines.size());
  for (const std::unique_ptr<TextPeer>& owned : peers) {
    TextPeer& peer = *owned;
    if (peer.Measure(lines) >= 0)
      Enlist("TextMeasure", peer, count,
             [&peer] { benchmark::DoNotOptimize(peer.Measure(lines)); });
    if (peer.Draw(lines)) Enlist("TextDraw", peer, count, [&peer] { peer.Draw(lines); });
    if (peer.Wrap(paragraph, kParagraphWidth) >= 0)
      Enlist("TextWrap", peer, 1,
             [&peer] { benchmark::DoNotOptimize(peer.Wrap(paragraph, kParagraphWidth)); });
    if (peer.Open()) Enlist("TextOpen", peer, 1, [&peer] { peer.Open(); });
  }
  benchmark::RegisterBenchmark("TextThreads/one", MeasureTogether)->UseRealTime();
  benchmark::RegisterBenchmark("TextThreads/eight", MeasureTogether)->Threads(8)->UseRealTime();
  benchmark::RegisterBenchmark("TextCache/ZIRK", MeasureCache)->Iterations(1);
}

}  // namespace ZIRK::bench
