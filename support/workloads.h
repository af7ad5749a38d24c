#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::support {

/// The surfaces and fonts that the workloads use.
struct Stage {
  VuBitmap& screen;
  std::unique_ptr<VuBitmap> sprite;
  std::unique_ptr<VuFont> font;  ///< Null for no text.
};

/// Bitmaps that the backend cannot make are null.
Stage MakeStage(VuGraphics& graphics, VuBitmap& screen, const std::string& fontFile);

/// A task that measures a backend.
struct Workload {
  const char* name;
  const char* unit;
  bool needsFont;
  /// Draws for some milliseconds at most, and returns the amount in `unit`.
  double (*draw)(Stage& stage);
};

inline constexpr int kWorkloadCount = 5;
extern const Workload kWorkloads[kWorkloadCount];

}  // namespace ZIRK::support
