#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::support {

/// What the workloads draw with, and onto.
struct Stage {
  VuBitmap& screen;
  std::unique_ptr<VuBitmap> sprite;
  std::unique_ptr<VuFont> font;  ///< Null for no text.
};

/// Null members where the backend makes no bitmap.
Stage MakeStage(VuGraphics& graphics, VuBitmap& screen, const std::string& fontFile);

/// One thing that a backend is measured by.
struct Workload {
  const char* name;
  const char* unit;
  bool needsFont;
  /// Draws for some milliseconds at most and gives how much that was, in the unit.
  double (*draw)(Stage& stage);
};

inline constexpr int kWorkloadCount = 5;
extern const Workload kWorkloads[kWorkloadCount];

}  // namespace ZIRK::support
