// A font in memory, measured and drawn. Every font file is an input: its last bytes are also the
// settings and the text.

#include <algorithm>
#include <memory>
#include <string>

#include "input.h"

using namespace ZIRK;

namespace {

constexpr size_t kSettings = 8;
constexpr size_t kText = 24;
constexpr unsigned kLargest = 96;

void Measure(const VuFont& font, const std::string& text) {
  int height, ascender, descender, maxAdvance, position, thickness;
  font.GetFontMetrics(height, ascender, descender, maxAdvance);
  font.GetUnderlineMetrics(position, thickness);
  font.GetOneLineWidth(text.c_str());
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const size_t tail = std::min(size, kSettings + kText);
  const uint8_t* settings = data + size - tail;
  const size_t textAt = std::min(tail, kSettings);
  // Some letters that the sample fonts have, an accent, an ideograph, and invalid UTF-8.
  std::string text = "AVg \xC3\xA9\xE4\xB8\xAD\xF0\x9F\xFF";
  text.append(settings + textAt, settings + tail);

  fuzz::Input input(settings, textAt);
  const int faceIndex = input.Below(3);
  const int pixelSize = input.Below(kLargest + 1);
  const uint8_t flags = input.Byte();
  const std::unique_ptr<VuFont> font(VuFont::CreateFontFromMemoryEx(
      data, static_cast<unsigned>(size), faceIndex, pixelSize, flags & 1, flags & 2));
  if (!font) return 0;
  Measure(*font, text);
  font->SetFallbackGlyph(input.Byte());
  font->SetOutlineType(static_cast<VuFont::OutlineType>(input.Below(5)));
  font->SetOutlineThickness(input.Number());
  if (flags & 4) font->SetFallbackFont(font.get());

  const std::unique_ptr<VuBitmap> surface(
      fuzz::Context().CreateBitmap(200, 120, VuPixelFormat::ARGB8888));
  surface->DrawText(*font, text.c_str(), {2, 2}, 0xFFFFFFFF);
  surface->DrawText(*font, text.c_str(), {2, 2}, 0x80FF8040, VuTransform(20, 60, 1.5f, 0.75f, 30));
  Measure(*font, text);
  return 0;
}
