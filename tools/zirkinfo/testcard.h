#pragma once

#include <zirk/zirk.h>

#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

constexpr int kCardWidth = 640;
constexpr int kCardHeight = 480;

/// One of the card's panels, each of which shows one thing that a backend does.
struct PanelPlace {
  const char* name;
  VuRect area;  ///< On the card, with its label.
};

/// Every panel; the frame around them is none.
std::vector<PanelPlace> PanelPlaces();

/// Draws the test card into the top-left corner of `target`: the same picture, but for rounding, by
/// every backend. `fontFile` may be empty; then there is no text. False if the backend could not
/// make the bitmaps that are drawn with.
bool DrawTestCard(VuGraphics& graphics, VuBitmap& target, const std::string& fontFile);

}  // namespace ZIRK::zirkinfo
