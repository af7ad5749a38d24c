#include <directfb.h>

#include <cstring>
#include <stdexcept>

#include "textpeer.h"

namespace ZIRK::bench {

namespace {

void Check(DFBResult result) {
  if (result != DFB_OK) throw std::runtime_error(DirectFBErrorString(result));
}

/// A surface in memory; without a display, on the system that has none.
class DirectFbText final : public TextPeer {
 public:
  DirectFbText() {
    Check(DirectFBInit(nullptr, nullptr));
    for (const char* option : {"quiet", "no-banner", "no-sighandler"})
      DirectFBSetOption(option, nullptr);
    DirectFBSetOption("system", "dummy");
    Check(DirectFBCreate(&dfb_));
    DFBSurfaceDescription surface = {};
    surface.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_WIDTH | DSDESC_HEIGHT |
                                                            DSDESC_PIXELFORMAT | DSDESC_CAPS);
    surface.caps = DSCAPS_SYSTEMONLY;
    surface.width = kWidth;
    surface.height = kHeight;
    surface.pixelformat = DSPF_ARGB;
    Check(dfb_->CreateSurface(dfb_, &surface, &surface_));
    DFBFontDescription font = {};
    font.flags = DFDESC_HEIGHT;
    font.height = kTextSize;
    Check(dfb_->CreateFont(dfb_, TextFont().c_str(), &font, &font_));
    Check(surface_->SetFont(surface_, font_));
    Check(surface_->Clear(surface_, 0, 0, 0, 255));
    Check(surface_->SetColor(surface_, 0x33, 0x66, 0x99, 255));
  }
  ~DirectFbText() override {
    font_->Release(font_);
    surface_->Release(surface_);
    dfb_->Release(dfb_);
  }

  const char* Name() const override { return "DirectFB"; }

  double Measure(const TextLines& lines) override {
    double sum = 0;
    for (const TextLine& line : lines) {
      int width = 0;
      font_->GetStringWidth(font_, line.text.c_str(), static_cast<int>(line.text.size()), &width);
      sum += width;
    }
    return sum;
  }

  bool Draw(const TextLines& lines) override {
    for (const TextLine& line : lines)
      surface_->DrawString(surface_, line.text.c_str(), static_cast<int>(line.text.size()), line.x,
                           line.y, DSTF_TOPLEFT);
    return true;
  }

  bool Read(uint32_t* out) override {
    void* pixels = nullptr;
    int pitch = 0;
    Check(surface_->Lock(surface_, DSLF_READ, &pixels, &pitch));
    for (int y = 0; y < kHeight; ++y)
      std::memcpy(out + size_t{kWidth} * static_cast<size_t>(y),
                  static_cast<const char*>(pixels) + ptrdiff_t{pitch} * y, kWidth * 4);
    Check(surface_->Unlock(surface_));
    return true;
  }

 private:
  IDirectFB* dfb_ = nullptr;
  IDirectFBSurface* surface_ = nullptr;
  IDirectFBFont* font_ = nullptr;
};

}  // namespace

std::unique_ptr<TextPeer> MakeDirectFbText() {
  return std::make_unique<DirectFbText>();
}

}  // namespace ZIRK::bench
