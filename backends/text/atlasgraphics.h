#pragma once

#include <memory>
#include <mutex>

#include "context/graphicsbase.h"

namespace ZIRK::backends {

/// Makes the bitmaps of glyph atlases, one such object for a context.
///
/// A font keeps whoever made its atlas's bitmap, to make a larger one, and may outlive the context.
/// So that is not the context but this, which every surface of the context and every bitmap of an
/// atlas hold on to. What is left to a backend is to make a bitmap, which need not be cleared: only
/// the glyphs are read.
class AtlasGraphics : public GraphicsBase, public std::enable_shared_from_this<AtlasGraphics> {
 public:
  /// The bitmaps are in the context's books. `graphicsType` is the context's. Owned by a
  /// std::shared_ptr.
  AtlasGraphics(std::shared_ptr<SurfaceLedger> ledger, int graphicsType);
  ~AtlasGraphics() override;

  /// The maker at the address that an atlas has of it: this one, as a rule, or that of another
  /// context. Null, after an error line, if there is none, or none any more.
  std::shared_ptr<AtlasGraphics> FindOwner(const VuGraphicsImpl* owner);

  /// Held while text is drawn from one of the atlases.
  std::mutex& DrawingMutex() { return drawingMutex_; }

  void Flush() override {}
  int GetGraphicsType() const override { return graphicsType_; }

 private:
  std::unique_ptr<VuScreenImpl> MakeScreen(Entry entry,
                                           const VuScreenDescription& description) final;
  std::unique_ptr<VuBitmapImpl> MakePicture(Entry entry, int width, int height, Image& image,
                                            VuScaleMode scaleMode) final;

  const int graphicsType_;
  std::mutex drawingMutex_;
  AtlasGraphics* next_;  ///< In the list of all that exist.
};

}  // namespace ZIRK::backends
