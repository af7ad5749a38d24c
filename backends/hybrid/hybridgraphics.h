#pragma once

#include <zirk/backendtable.h>

#include <memory>
#include <optional>
#include <string>

#include "fb/fbgraphics.h"
#include "hybrid/texturecache.h"

namespace ZIRK::backends {

/// A context that draws bitmaps in memory by the processor, and screens by OpenGL ES 2. If OpenGL
/// is not available, screens are those of FbGraphics.
///
/// OpenGL starts with the first screen, or with the first query about one.
class HybridGraphics final : public FbGraphics {
 public:
  HybridGraphics();

  /// Also detaches OpenGL from this thread, so that another one may use the context.
  void Flush() override;
  /// While OpenGL is in use, the largest side of its textures.
  int GetMaxTextureSize() const override;

 protected:
  std::optional<ImageSize> DeviceSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;

 private:
  static constexpr int kType = TypeCode(BackendType::Hybrid);

  explicit HybridGraphics(const std::shared_ptr<MemoryBudget>& budget);
  /// Starts OpenGL if necessary. Returns null if it is not available, or if FB is the better choice
  /// for display `index`. `reason` then explains why the screen is not the best possible; it is
  /// empty if FB's screen is.
  std::shared_ptr<TextureCache> FindOpenGl(int index, std::string& reason) const;

  mutable std::shared_ptr<TextureCache> textures_;  ///< Null until OpenGL is started.
  /// The description of an OpenGL device that was rejected in favour of FB.
  mutable std::optional<std::string> whyFb_;
};

}  // namespace ZIRK::backends
