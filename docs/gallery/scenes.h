#pragma once

#include <zirk/zirk.h>

#include <vector>

namespace ZIRK::gallery {

/// A small picture, drawn the same by every backend.
struct Scene {
  const char* name;
  /// Draws on a new ARGB8888 bitmap of kWidth x kHeight. The bitmap is cleared to dark blue first.
  void (*draw)(VuGraphics& graphics, VuBitmap& target);
};

constexpr int kWidth = 192;
constexpr int kHeight = 144;

const std::vector<Scene>& Scenes();
/// Those of text, which are among them.
std::vector<Scene> TextScenes();
/// Those of the kit, which are among them too.
std::vector<Scene> ShapeScenes();
/// The one of that name.
const Scene& SceneCalled(const char* name);

}  // namespace ZIRK::gallery
