#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include "peer.h"

namespace ZIRK::bench {

namespace {

class ZirkPeer final : public Peer {
 public:
  ZirkPeer(const char* name, std::unique_ptr<VuGraphics> graphics)
      : name_(name),
        graphics_(std::move(graphics)),
        target_(graphics_->CreateBitmap(kWidth, kHeight, VuPixelFormat::ARGB8888)),
        opaqueTarget_(graphics_->CreateBitmap(kWidth, kHeight, VuPixelFormat::XRGB8888)),
        narrowTarget_(graphics_->CreateBitmap(kWidth, kHeight, VuPixelFormat::RGB565)),
        shapes_(*graphics_) {
    for (const Picture& p : sources_)
      pictures_.push_back(MakeBitmap(p.width, p.height,
                                     p.opaque ? VuPixelFormat::XRGB8888 : VuPixelFormat::ARGB8888,
                                     p.pixels.data(), p.width * 4));
    for (const Coverage& m : MakeMasks())
      masks_.push_back(MakeBitmap(m.width, m.height, VuPixelFormat::A8, m.alpha.data(), m.width));
  }

  const char* Name() const override { return name_; }

  bool Fill(const Rects& places, VuColor color) override {
    for (const VuRect& r : places) target_->DrawRect(r, color);
    return Finish();
  }

  bool FillMasked(const Rects& places, VuColor color, MaskId mask) override {
    for (const VuRect& r : places)
      target_->DrawRect(r, color, VuTransform(), *masks_[mask], nullptr);
    return Finish();
  }

  bool DrawLines(const Lines& lines, VuColor color) override {
    for (const Line& l : lines) target_->DrawLine(l.from, l.to, color);
    return Finish();
  }

  bool Blit(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) target_->DrawObject(r, *pictures_[picture]);
    return Finish();
  }

  bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) override {
    const VuBitmap& source = *pictures_[picture];
    for (size_t i = 0; i < places.size(); ++i)
      target_->DrawObject(places[i], source, source.GetBounds(), VuTransform(), colors[i]);
    return Finish();
  }

  bool BlitMasked(const Rects& places, PictureId picture, MaskId mask) override {
    const VuBitmap& source = *pictures_[picture];
    for (const VuRect& r : places)
      target_->DrawObject(r, source, source.GetBounds(), VuTransform(), white, *masks_[mask],
                          nullptr);
    return Finish();
  }

  bool BlitScaled(const Rects& places, PictureId picture, bool smooth) override {
    pictures_[picture]->SetScaleMode(smooth ? VuScaleMode::Bilinear : VuScaleMode::Nearest);
    return Blit(places, picture);
  }

  bool BlitRotated(const Rects& places, PictureId picture, double degrees) override {
    VuBitmap& source = *pictures_[picture];
    source.SetScaleMode(VuScaleMode::Bilinear);
    const VuRect bounds = source.GetBounds();
    const VuRect centred{-bounds.width / 2, -bounds.height / 2, bounds.width, bounds.height};
    for (const VuRect& r : places) {
      const VuTransform t(static_cast<float>(r.x + r.width / 2),
                          static_cast<float>(r.y + r.height / 2), 1, 1,
                          static_cast<float>(degrees));
      target_->DrawObject(centred, source, t);
    }
    return Finish();
  }

  bool Upload(const Rects& places, PictureId picture) override {
    const Picture& p = sources_[picture];
    VuBitmap& target = p.opaque ? *opaqueTarget_ : *target_;
    for (const VuRect& r : places)
      target.SetPixels(r, p.pixels.data(), static_cast<unsigned>(p.width * 4));
    return Finish();
  }

  bool BlitOn565(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) narrowTarget_->DrawObject(r, *pictures_[picture]);
    narrowTarget_->Finish();
    return true;
  }

  bool FillRounded(const Rects& places, float radius, VuColor color) override {
    for (const VuRect& r : places) shapes_.FillRoundedRect(*target_, r, radius, color);
    return Finish();
  }

  bool FillDiscs(const Rects& places, VuColor color) override {
    for (const VuRect& r : places) {
      const float radius = static_cast<float>(r.width) / 2;
      const kit::Point corner(static_cast<float>(r.x), static_cast<float>(r.y));
      shapes_.FillDisc(*target_, corner + kit::Point(radius, radius), radius, color);
    }
    return Finish();
  }

  bool FillGradient(const Rects& places, VuColor top, VuColor bottom) override {
    const kit::Paint paint = kit::Paint::Linear(top, bottom);
    for (const VuRect& r : places) shapes_.FillRect(*target_, r, paint);
    return Finish();
  }

  void Read(uint32_t* out) override { target_->GetPixels(target_->GetBounds(), out); }

 private:
  std::unique_ptr<VuBitmap> MakeBitmap(int width, int height, VuPixelFormat format,
                                       const void* pixels, int pitch) {
    std::unique_ptr<VuBitmap> bitmap(graphics_->CreateBitmap(width, height, format));
    bitmap->SetPixels(bitmap->GetBounds(), pixels, static_cast<unsigned>(pitch));
    return bitmap;
  }

  bool Finish() {
    target_->Finish();
    return true;
  }

  const char* const name_;
  std::unique_ptr<VuGraphics> graphics_;
  const std::vector<Picture> sources_ = MakePictures();
  std::unique_ptr<VuBitmap> target_;
  std::unique_ptr<VuBitmap> opaqueTarget_;
  std::unique_ptr<VuBitmap> narrowTarget_;
  kit::Shapes shapes_;
  std::vector<std::unique_ptr<VuBitmap>> pictures_;
  std::vector<std::unique_ptr<VuBitmap>> masks_;
};

}  // namespace

std::unique_ptr<Peer> MakeZirkPeer(const char* name, const char* backend) {
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(backend, false));
  if (!graphics) return nullptr;
  return std::make_unique<ZirkPeer>(name, std::move(graphics));
}

}  // namespace ZIRK::bench
