#pragma once

#include <zirk/zirk.h>

#include <vector>

namespace ZIRK::scenes {

/// A small picture, drawn the same by every backend.
struct Scene {
  const char* name;
  /// Draws on a new ARGB8888 bitmap of kWidth x kHeight. The bitmap is cleared to dark blue first.
  void (*draw)(VuGraphics& graphics, VuBitmap& target);
  /// Largest difference of a channel and mean difference of all that are let pass, of 255: one step
  /// of rounding, unless a reason is given.
  double worst = 1;
  double mean = 0.5;
  const char* reason = "";
  /// Largest difference for the backends that the golden pictures are not from, if it is larger.
  double elsewhere = 0;
};

constexpr int kWidth = 192;
constexpr int kHeight = 144;

const std::vector<Scene>& Scenes();
/// Those of text, which are among them.
std::vector<Scene> TextScenes();

}  // namespace ZIRK::scenes
