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
    const uint32_t premultiplied = ScalePixel(color, points.AlphaAt(ends.At(line, step)));
    PaintRun(x, x + 1, y, nullptr, premultiplied, nullptr, nullptr);
  });
}

void Painter::DrawSlantedLine(const Hairline& line, uint32_t color) {
  const std::optional<Kernels::Operator> op = blender_.Operator(IsOpaque(color));
  if (!op) {
    Walk(line, clip_,
         [&](int x, int y, int) { PaintRun(x, x + 1, y, nullptr, color, nullptr, nullptr); });
    return;
  }
  WithPixelTraits(target_.Format(), [&](auto traits) {
    using Traits = decltype(traits);
    using Stored = typename Traits::Stored;
    uint8_t* const pixels = target_.Row(0);
    const ptrdiff_t pitch = target_.Pitch();
    const auto at = [=](int x, int y) { return reinterpret_cast<Stored*>(pixels + y * pitch) + x; };
    const Stored narrow = Traits::Pack(color);
    if (*op == Kernels::Source)
      Walk(line, clip_, [&](int x, int y, int) { *at(x, y) = narrow; });
    else
      Walk(line, clip_, [&](int x, int y, int) {
        *at(x, y) = Traits::Pack(BlendOver(color, Traits::Unpack(*at(x, y))));
      });
  });
}

}  // namespace ZIRK::backends
