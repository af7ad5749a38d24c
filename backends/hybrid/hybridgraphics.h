#pragma once

#include <zirk/backendtable.h>

#include <memory>
#include <optional>
#include <string>

#include "fb/fbgraphics.h"
#include "hybrid/texturecache.h"

namespace ZIRK::backends {

/// A context whose bitmaps are in memory, drawn by the processor, and whose screens are drawn by
/// OpenGL ES 2; where that cannot be had, the screens are those of FbGraphics.
///
/// OpenGL is started with the first screen, or the first question about one.
class HybridGraphics final : public FbGraphics {
 public:
  HybridGraphics();

  /// Afterwards another thread may go on.
  void Flush() override;
  /// While there is OpenGL, what can be drawn on its screens.
  int GetMaxTextureSize() const override;

 protected:
  std::optional<ImageSize> DeviceSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;

 private:
  static constexpr int kType = TypeCode(BackendType::Hybrid);

  explicit HybridGraphics(const std::shared_ptr<MemoryBudget>& budget);
  /// Null where there is no OpenGL, or FB serves display `index` better. `reason` then says why the
  /// screen is worse than it could be; it is empty where FB's is the best.
  std::shared_ptr<TextureCache> FindOpenGl(int index, std::string& reason) const;

  mutable std::shared_ptr<TextureCache> textures_;  ///< Null until OpenGL is started.
  /// What OpenGL would draw by, once it was found to serve worse than FB.
  mutable std::optional<std::string> whyFb_;
};

}  // namespace ZIRK::backends
