#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "geometry/placement.h"
#include "text/glyphatlasallocator.h"
#include "text/textlayout.h"

namespace ZIRK::backends {

/// A line of text while it is drawn, from an atlas that this plug-in has made. Nobody else draws
/// from the atlas meanwhile.
class AtlasLine {
 public:
  /// `atlases` makes the font's atlas if it has none yet. May throw std::bad_alloc.
  AtlasLine(GlyphAtlasAllocator& atlases, const TextArguments& arguments)
      : layout_(arguments, &atlases),
        owner_(layout_.Owner() ? atlases.FindOwner(layout_.Owner()) : nullptr) {
    if (owner_) turn_ = std::unique_lock(owner_->DrawingMutex());
  }

  /// Whether there is anything to draw. If not, an error line has been written where the font's
  /// atlas is of another backend's making.
  explicit operator bool() const { return owner_ != nullptr; }

  bool Next(TextLayout::Glyph& glyph) { return layout_.Next(glyph); }

  /// Where all of the line comes to lie.
  std::optional<Placement> Place(const VuTMatrix2D<float>& m) const {
    return backends::Place(ToExtent(layout_.Box()), m, Edges::OnWholePixels);
  }

 private:
  TextLayout layout_;
  const std::shared_ptr<GlyphAtlasAllocator> owner_;
  std::unique_lock<std::mutex> turn_;
};

}  // namespace ZIRK::backends
