#include "hints.h"

#include <algorithm>
#include <cmath>

#include "support/formatname.h"
#include "visit.h"

namespace ZIRK::trace {

namespace {

/// Ignore what happens in one frame only, such as at the start.
constexpr uint64_t kFewestFrames = 2;

bool IsBlit(Operation operation) {
  return operation >= Operation::DrawObject && operation <= Operation::DrawObjectSubPixel;
}

/// Returns whether pixels are converted between the two formats. A8 does not count.
bool IsConverted(VuPixelFormat from, VuPixelFormat to) {
  const auto kind = [](VuPixelFormat format) {
    return format == VuPixelFormat::XRGB8888 ? VuPixelFormat::ARGB8888 : format;
  };
  return from != VuPixelFormat::A8 && to != VuPixelFormat::A8 && kind(from) != kind(to);
}

/// The widths and heights of a blit's rectangles, and the scale of its transform.
struct Blit {
  std::vector<std::pair<double, double>> sizes;
  double across = 1, down = 1;
};

Blit BlitOf(const Record& record) {
  Blit blit;
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, VuRect>) {
      blit.sizes.emplace_back(value.width, value.height);
    } else if constexpr (std::is_same_v<W, VuTRect2D<float>>) {
      blit.sizes.emplace_back(value.width(), value.height());
    } else if constexpr (std::is_same_v<W, VuTransform>) {
      blit.across = std::abs(static_cast<double>(value.scaleX));
      blit.down = std::abs(static_cast<double>(value.scaleY));
    } else if constexpr (std::is_same_v<W, VuTMatrix2D<float>>) {
      const float* const m = value.get();
      blit.across = std::hypot(static_cast<double>(m[0]), static_cast<double>(m[1]));
      blit.down = std::hypot(static_cast<double>(m[3]), static_cast<double>(m[4]));
    }
  });
  return blit;
}

/// Returns the scale factor in thousandths. It is 1000 if a single pixel is stretched, as for a
/// gradient.
int FactorOf(double to, double from, double scale) {
  constexpr double kMost = 1000, kUnit = 1000;
  const double factor = to * scale / from;
  if (from <= 1 || !(factor > 0 && factor < kMost)) return static_cast<int>(kUnit);
  return static_cast<int>(std::lround(factor * kUnit));
}

std::string FactorText(int thousandths) {
  char text[16];
  std::snprintf(text, sizeof text, "%.3g", thousandths / 1000.0);
  return text;
}

bool IsScaled(int thousandths) {
  return thousandths < 990 || thousandths > 1010;
}

}  // namespace

void Hints::Seen::Add(const Record& record) {
  if (times++ == 0) first = record.number;
  if (lastFrame != record.frame) ++frames;
  lastFrame = record.frame;
}

bool Hints::Before(const Record& record) {
  if (!WatchClears(record)) return false;
  WatchSources(record);
  return true;
}

void Hints::After(const Record& record) {
  Name(record);
  WatchAtlas(record);
}

// --- Clears that are drawn over ---------------------------------------------------------------

bool Hints::WatchClears(const Record& record) {
  const Operation operation = record.operation;
  const Id object = ObjectOf(record);
  // Operations that read the surface need the clear.
  if (operation == Operation::SwapBuffers || operation == Operation::GetPixels ||
      operation == Operation::Lock || operation == Operation::Close)
    cleared_.erase(object);
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, Source> || std::is_same_v<W, Mask>) cleared_.erase(value);
  });
  const auto found = cleared_.find(object);
  if (found != cleared_.end() && ChangesPixels(operation)) {
    if (!DrawOnCleared(record, found->second)) return false;
    if (found->second.left == 0) {
      Record clear = record;
      clear.number = found->second.operation;
      clears_[object].Add(clear);
    }
    if (found->second.left == 0 || found->second.pixels.empty()) cleared_.erase(found);
  }
  const VuBitmap* const surface = player_.Find(object);
  if (surface && (operation == Operation::Clear || operation == Operation::ClearTo)) {
    const VuRect bounds = surface->GetBounds();
    const auto all = static_cast<size_t>(bounds.width) * static_cast<size_t>(bounds.height);
    cleared_[object] = {record.number, all, std::vector<uint8_t>(all, 1)};
  }
  return true;
}

/// Removes the pixels that the operation draws over. Clears the list of pixels if the operation
/// needs the clear.
bool Hints::DrawOnCleared(const Record& record, Cleared& cleared) {
  const VuBitmap* const surface = player_.Find(ObjectOf(record));
  if (!surface) return true;
  const VuRect bounds = surface->GetBounds();
  const auto width = static_cast<size_t>(bounds.width);
  if (cleared.pixels.size() != width * static_cast<size_t>(bounds.height)) {
    cleared.pixels.clear();  // It belongs to an earlier surface with this number.
    return true;
  }
  Written written;
  const bool isDrawn = HasObject(record.operation);
  if (isDrawn ? !coverage_.FindReplaced(record, written) : !coverage_.Find(record, written))
    return false;
  const uint8_t blended = isDrawn ? Coverage::kBlended : 0;
  for (size_t i = 0; i < written.pixels.size(); ++i) {
    if (written.pixels[i] == 0) continue;
    const auto columns = static_cast<size_t>(written.part.width);
    const size_t x = static_cast<size_t>(written.part.x) + i % columns;
    uint8_t& pixel =
        cleared.pixels[(static_cast<size_t>(written.part.y) + i / columns) * width + x];
    if (pixel == 0) continue;
    if (written.pixels[i] == blended) {
      cleared.pixels.clear();
      return true;
    }
    pixel = 0;
    --cleared.left;
  }
  return true;
}

// --- Sources ----------------------------------------------------------------------------------

void Hints::WatchSources(const Record& record) {
  const Id object = ObjectOf(record);
  if (ChangesPixels(record.operation)) ++writes_[object];
  if (!IsBlit(record.operation) && record.operation != Operation::CopyPixels) return;
  Id id = Id::None;
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, Source>) id = value;
  });
  const VuBitmap *const from = player_.Find(id), *const to = player_.Find(object);
  if (!from || !to) return;
  if (IsConverted(from->GetInfo().format, to->GetInfo().format))
    conversions_[{id, object}].Add(record);
  if (!IsBlit(record.operation)) return;
  Use& source = sources_[id];
  if (source.drawn.times == 0) source.writes = writes_[id];
  source.changes |= source.writes != writes_[id];
  source.drawn.Add(record);
  const Blit blit = BlitOf(record);
  if (blit.sizes.size() < 2) return;
  const auto [toWidth, toHeight] = blit.sizes[0];
  const auto [fromWidth, fromHeight] = blit.sizes[1];
  scalings_[{id, FactorOf(toWidth, fromWidth, blit.across),
             FactorOf(toHeight, fromHeight, blit.down)}]
      .Add(record);
}

// --- Text -------------------------------------------------------------------------------------

/// Counts how often a font's atlas was emptied. The positions of its glyphs show it: they change.
void Hints::WatchAtlas(const Record& record) {
  // If a font is restyled or made again, its glyphs are different ones.
  if (record.operation == Operation::Close) inAtlas_.clear();
  if (record.operation == Operation::StyleFont || record.operation == Operation::MakeFont)
    inAtlas_.erase(ObjectOf(record));
  if (record.operation != Operation::DrawText && record.operation != Operation::DrawTextBy) return;
  Id id = Id::None;
  const char* text = nullptr;
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, Font>) id = value;
    if constexpr (std::is_same_v<W, Text>) text = value;
  });
  const VuFontAtlas* const font = player_.FindFont(id);
  if (!font) return;
  auto& known = inAtlas_[id];
  const auto isMoved = [](const auto& entry) {
    const auto& [glyph, place] = entry;
    return !glyph->inAtlas || place != std::pair(glyph->x, glyph->y);
  };
  if (std::any_of(known.begin(), known.end(), isMoved)) {
    known.clear();
    emptied_[id].Add(record);
  }
  TextCursor cursor(text);
  while (const Glyph* const glyph = font->NextGlyph(cursor, false))
    if (glyph->inAtlas) known[glyph] = {glyph->x, glyph->y};
}

// --- Names ------------------------------------------------------------------------------------

void Hints::Name(const Record& record) {
  VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
    if constexpr (std::is_same_v<W, NewBitmap> || std::is_same_v<W, NewScreen>) {
      const VuBitmap* const made = player_.Find(value.id);
      if (!made) return;
      const VuBitmapInfo info = made->GetInfo();
      kinds_[value.id] = std::string(std::is_same_v<W, NewScreen> ? "screen" : "bitmap") + " of " +
                         std::to_string(info.width) + " \u00D7 " + std::to_string(info.height) +
                         ' ' + support::NameOf(info.format);
    } else if constexpr (std::is_same_v<W, Text>) {
      if (record.operation == Operation::SetName) names_[ObjectOf(record)] = value ? value : "";
    }
  });
  if (record.operation == Operation::MakeFont) {
    std::vector<int> numbers;  // The face index and the size.
    VisitFields(record, [&]<class W>(W*, const Value<W>& value) {
      if constexpr (std::is_same_v<W, int>) numbers.push_back(value);
    });
    kinds_[ObjectOf(record)] = "font of " + std::to_string(numbers[1]) + " pixels";
  }
}

std::string Hints::Describe(Id surface) const {
  std::string text = '@' + std::to_string(static_cast<uint32_t>(surface));
  const auto kind = kinds_.find(surface), name = names_.find(surface);
  if (kind != kinds_.end()) text += ", a " + kind->second;
  if (name != names_.end() && !name->second.empty())
    text += " named \u201C" + name->second + "\u201D";
  return text;
}

std::vector<Hint> Hints::Found() const {
  std::vector<Hint> hints;
  const auto add = [&](const std::string& what, const Seen& seen) {
    hints.push_back({what, seen.times, seen.frames, seen.first});
  };
  for (const auto& [surface, seen] : clears_)
    add("What clears " + Describe(surface) +
            " is drawn over whole before anything shows or reads it.",
        seen);
  for (const auto& [scaling, seen] : scalings_) {
    const auto& [id, across, down] = scaling;
    const Use& source = sources_.at(id);
    const bool isAlways = seen.frames == source.drawn.frames && seen.frames >= kFewestFrames;
    if (!isAlways || source.changes || !(IsScaled(across) || IsScaled(down))) continue;
    add(Describe(id) + " is scaled by " + FactorText(across) + " \u00D7 " + FactorText(down) +
            " in each frame that draws it, and does not change.",
        seen);
  }
  for (const auto& [surfaces, seen] : conversions_)
    if (seen.frames >= kFewestFrames)
      add("Each blit from " + Describe(surfaces.first) + " to " + Describe(surfaces.second) +
              " converts the format.",
          seen);
  for (const auto& [font, seen] : emptied_)
    add("Text of " + Describe(font) + " has its atlas emptied, and glyphs are rendered again.",
        seen);
  std::stable_sort(hints.begin(), hints.end(),
                   [](const Hint& a, const Hint& b) { return a.times > b.times; });
  return hints;
}

}  // namespace ZIRK::trace
