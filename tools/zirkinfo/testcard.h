#pragma once

#include <zirk/zirk.h>

#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

constexpr int kCardWidth = 640;
constexpr int kCardHeight = 480;

/// A panel of the card. Each shows one operation of a backend.
struct PanelPlace {
  const char* name;
  VuRect area;  ///< On the card, with its label.
};

/// All panels. The frame around them is not a panel.
std::vector<PanelPlace> PanelPlaces();

/// Draws the test card into the top-left corner of `target`. Except for rounding, every backend
/// draws the same picture. If `fontFile` is empty, there is no text. Returns false if the backend
/// cannot make the bitmaps that the card needs.
bool DrawTestCard(VuGraphics& graphics, VuBitmap& target, const std::string& fontFile);

}  // namespace ZIRK::zirkinfo
