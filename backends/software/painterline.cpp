// Lines: one pixel wide, hard-edged, both ends included.

#include "geometry/hairline.h"
#include "geometry/pixelmath.h"
#include "geometry/pixeltraits.h"
#include "software/painter.h"

namespace ZIRK::backends {

void Painter::DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m,
                       const Mask* mask) {
  Refresh();
  const std::optional<Hairline> line = MapLine(from, to, m);
  if (!line) return;
  const Box box = Visible(line->Bounds());
  if (box.IsEmpty()) return;
  Touch(box);
  const uint32_t premultiplied = Premultiply(color);
  if (mask) {
    const PixelBuffer& pixels = *mask->source.pixels;
    const LineEnds ends = MaskEnds(mask->coords, pixels.Width(), pixels.Height(), from, to, *line);
    DrawMaskedLine(*line, premultiplied, mask->source, ends);
  } else if (line->x0 == line->x1 || line->y0 == line->y1) {
    PaintBox(box, nullptr, premultiplied);
  } else {
    DrawSlantedLine(*line, premultiplied);
  }
}

void Painter::DrawMaskedLine(const Hairline& line, uint32_t color, const Source& mask,
                             const LineEnds& ends) {
  const MaskPoints points(mask);
  Walk(line, clip_, [&](int x, int y, int step) {
    PaintPixel(x, y, ScalePixel(color, points.AlphaAt(ends.At(line, step))));
  });
}

void Painter::PaintPixel(int x, int y, uint32_t color) {
  PixelSpan shading = {};
  shading.color = color;
  blender_.Draw({x, y, x + 1, y + 1}, shading, false);
}

void Painter::DrawSlantedLine(const Hairline& line, uint32_t color) {
  const std::optional<Kernels::Operator> op = blender_.Operator(IsOpaque(color));
  if (!op) {
    Walk(line, clip_, [&](int x, int y, int) { PaintPixel(x, y, color); });
    return;
  }
  WithPixelTraits(target_.Format(), [&](auto traits) {
    using Traits = decltype(traits);
    using Stored = typename Traits::Stored;
    LineWay way = WayInside(line, clip_);
    const auto offset = [pitch = target_.Pitch()](int x, int y) {
      return y * ptrdiff_t{pitch} + x * static_cast<ptrdiff_t>(sizeof(Stored));
    };
    uint8_t* at = target_.Row(0) + offset(way.x, way.y);
    const ptrdiff_t along = offset(way.alongX, way.alongY);
    const ptrdiff_t across = offset(way.acrossX, way.acrossY);
    const Stored narrow = Traits::Pack(color);
    const auto draw = [&](auto pixel) {
      for (int i = 0; i < way.count; ++i) {
        pixel(*reinterpret_cast<Stored*>(at));
        at += along + (across & way.Turns());
      }
    };
    if (*op == Kernels::Source)
      draw([=](Stored& pixel) { pixel = narrow; });
    else
      draw([=](Stored& pixel) { pixel = Traits::Pack(BlendOver(color, Traits::Unpack(pixel))); });
  });
}

}  // namespace ZIRK::backends
