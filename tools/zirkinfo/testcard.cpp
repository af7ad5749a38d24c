#include "testcard.h"

#include "panels.h"

namespace ZIRK::zirkinfo {

namespace {

constexpr int kColumns = 4;
constexpr int kLeft = 10, kTop = 9, kColumnPitch = 157, kRowPitch = 118;
constexpr int kLabelHeight = 14, kLabelSize = 10;
constexpr VuColor kGround{0xFF2A3138}, kLabelColor{0xFFC8D0D8};

struct Panel {
  const char* name;
  void (*draw)(const Easel& easel);
};

constexpr Panel kPanels[] = {
    {"colours", DrawColours},      {"alpha", DrawAlpha},
    {"grids", DrawGrids},          {"lines", DrawLines},
    {"edges", DrawEdges},          {"clipping", DrawClipping},
    {"scaled", DrawScaled},        {"turned", DrawTurned},
    {"mirrored", DrawMirrored},    {"masks", DrawMasks},
    {"blending", DrawBlending},    {"formats", DrawFormats},
    {"tints", DrawTints},          {"pixels", DrawPixels},
    {"text-sizes", DrawTextSizes}, {"text-effects", DrawTextEffects},
};

VuPoint CornerOf(int index) {
  return {kLeft + index % kColumns * kColumnPitch, kTop + index / kColumns * kRowPitch};
}

/// Draws the outermost pixels, with another colour in each corner, which shows whether the picture
/// is cut, shifted or turned.
void DrawFrame(VuBitmap& t) {
  constexpr int kRight = kCardWidth - 1, kBottom = kCardHeight - 1, kCorner = 6;
  t.DrawRect({0, 0, kCardWidth, kCardHeight}, kGround);
  t.DrawLine({0, 0}, {kRight, 0}, white);
  t.DrawLine({kRight, 0}, {kRight, kBottom}, white);
  t.DrawLine({kRight, kBottom}, {0, kBottom}, white);
  t.DrawLine({0, kBottom}, {0, 0}, white);
  t.DrawRect({0, 0, kCorner, kCorner}, kRed);
  t.DrawRect({kCardWidth - kCorner, 0, kCorner, kCorner}, kGreen);
  t.DrawRect({0, kCardHeight - kCorner, kCorner, kCorner}, kBlue);
  t.DrawRect({kCardWidth - kCorner, kCardHeight - kCorner, kCorner, kCorner}, kGold);
}

/// Resets the state that a panel may have changed to that of a new surface.
void ResetState(VuBitmap& t) {
  t.SetClippingRect(t.GetBounds());
  t.SetBlendEnabled(true);
  t.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
}

}  // namespace

std::vector<PanelPlace> PanelPlaces() {
  std::vector<PanelPlace> places;
  for (const Panel& panel : kPanels) {
    const VuPoint corner = CornerOf(static_cast<int>(places.size()));
    places.push_back({panel.name, {corner.x, corner.y, kPanelWidth, kLabelHeight + kPanelHeight}});
  }
  return places;
}

bool DrawTestCard(VuGraphics& graphics, VuBitmap& target, const std::string& fontFile) {
  const Props props = MakeProps(graphics);
  if (!props.AreComplete()) return false;
  std::unique_ptr<VuFont> labels;
  if (!fontFile.empty()) labels = std::make_unique<VuFont>(fontFile.c_str(), 0, kLabelSize);

  DrawFrame(target);
  int index = 0;
  for (const Panel& panel : kPanels) {
    const VuPoint corner = CornerOf(index++);
    const Easel easel{graphics, target, props, fontFile, {corner.x, corner.y + kLabelHeight}};
    if (labels) target.DrawText(*labels, panel.name, corner, kLabelColor);
    easel.Rect(0, 0, kPanelWidth, kPanelHeight, kInk);
    panel.draw(easel);
    ResetState(target);
  }
  target.Finish();
  return true;
}

}  // namespace ZIRK::zirkinfo
