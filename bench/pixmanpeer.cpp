#include <pixman.h>

#include <cmath>

#include "peer.h"

namespace ZIRK::bench {

namespace {

struct Unref {
  void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using Image = std::unique_ptr<pixman_image_t, Unref>;

Image MakeSolid(VuColor color) {
  const auto alpha = color.argb >> 24;
  const auto channel = [=](int shift) {
    return static_cast<uint16_t>((color.argb >> shift & 255) * alpha * 257 / 255);
  };
  const pixman_color_t solid = {channel(16), channel(8), channel(0),
                                static_cast<uint16_t>(alpha * 257)};
  return Image(pixman_image_create_solid_fill(&solid));
}

void SetSampling(const Image& image, pixman_filter_t filter, pixman_repeat_t repeat,
                 const pixman_transform_t* transform) {
  pixman_image_set_filter(image.get(), filter, nullptr, 0);
  pixman_image_set_repeat(image.get(), repeat);
  pixman_image_set_transform(image.get(), transform);
}

class PixmanPeer final : public MemoryPeer {
 public:
  PixmanPeer()
      : image_(MakeImage(PIXMAN_a8r8g8b8, kWidth, kHeight, Target(), kPitch)),
        narrowImage_(MakeImage(PIXMAN_r5g6b5, kWidth, kHeight, nullptr, 0)) {
    for (const Picture& p : sources_)
      pictures_.push_back(MakeImage(p.opaque ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8, p.width, p.height,
                                    p.pixels.data(), p.width * 4));
    for (const Coverage& m : coverage_)
      masks_.push_back(MakeImage(PIXMAN_a8, m.width, m.height, m.alpha.data(), m.width));
  }

  const char* Name() const override { return "Pixman"; }

  bool Fill(const Rects& places, VuColor color) override {
    if (color.argb >> 24 == 255) {
      for (const VuRect& r : places)
        pixman_fill(Target(), kWidth, 32, r.x, r.y, r.width, r.height, color.argb);
      return true;
    }
    const Image solid = MakeSolid(color);
    for (const VuRect& r : places) Composite(PIXMAN_OP_OVER, solid, nullptr, r);
    return true;
  }

  bool FillMasked(const Rects& places, VuColor color, MaskId mask) override {
    const Image solid = MakeSolid(color);
    for (const VuRect& r : places) Composite(PIXMAN_OP_OVER, solid, masks_[mask].get(), r);
    return true;
  }

  bool DrawLines(const Lines&, VuColor) override { return false; }

  bool Blit(const Rects& places, PictureId picture) override {
    return BlitOn(image_, places, picture);
  }

  bool BlitOn565(const Rects& places, PictureId picture) override {
    return BlitOn(narrowImage_, places, picture);
  }

  /// A mask by component would also weaken the background by component, so the tinted picture is
  /// made first.
  bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) override {
    const Picture& p = sources_[picture];
    const Image tinted(
        pixman_image_create_bits(PIXMAN_a8r8g8b8, p.width, p.height, nullptr, p.width * 4));
    for (size_t i = 0; i < places.size(); ++i) {
      const Image tint = MakeSolid(colors[i]);
      pixman_image_set_component_alpha(tint.get(), 1);
      pixman_image_composite32(PIXMAN_OP_SRC, pictures_[picture].get(), tint.get(), tinted.get(), 0,
                               0, 0, 0, 0, 0, p.width, p.height);
      Composite(PIXMAN_OP_OVER, tinted, nullptr, places[i]);
    }
    return true;
  }

  bool BlitMasked(const Rects& places, PictureId picture, MaskId mask) override {
    for (const VuRect& r : places)
      Composite(PIXMAN_OP_OVER, pictures_[picture], masks_[mask].get(), r);
    return true;
  }

  bool BlitScaled(const Rects& places, PictureId picture, bool smooth) override {
    const Image& source = pictures_[picture];
    const pixman_op_t op = sources_[picture].opaque ? PIXMAN_OP_SRC : PIXMAN_OP_OVER;
    const pixman_filter_t filter = smooth ? PIXMAN_FILTER_BILINEAR : PIXMAN_FILTER_NEAREST;
    for (const VuRect& r : places) {
      pixman_transform_t toSource;
      pixman_transform_init_scale(
          &toSource, pixman_double_to_fixed(double(sources_[picture].width) / r.width),
          pixman_double_to_fixed(double(sources_[picture].height) / r.height));
      SetSampling(source, filter, PIXMAN_REPEAT_PAD, &toSource);
      Composite(op, source, nullptr, r);
    }
    SetSampling(source, PIXMAN_FILTER_NEAREST, PIXMAN_REPEAT_NONE, nullptr);
    return true;
  }

  bool BlitRotated(const Rects& places, PictureId picture, double degrees) override {
    const Image& source = pictures_[picture];
    const double radians = degrees * 3.141592653589793 / 180;
    for (const VuRect& r : places) {
      pixman_f_transform_t toSource;
      pixman_f_transform_init_translate(&toSource, -r.width / 2.0, -r.height / 2.0);
      pixman_f_transform_rotate(&toSource, nullptr, std::cos(radians), std::sin(radians));
      pixman_f_transform_translate(&toSource, nullptr, sources_[picture].width / 2.0,
                                   sources_[picture].height / 2.0);
      pixman_transform_t fixed;
      pixman_transform_from_pixman_f_transform(&fixed, &toSource);
      SetSampling(source, PIXMAN_FILTER_BILINEAR, PIXMAN_REPEAT_NONE, &fixed);
      Composite(PIXMAN_OP_OVER, source, nullptr, r);
    }
    SetSampling(source, PIXMAN_FILTER_NEAREST, PIXMAN_REPEAT_NONE, nullptr);
    return true;
  }

 private:
  /// `pixels` is only read where the image is only a source; null for zeros of its own.
  static Image MakeImage(pixman_format_code_t format, int width, int height, const void* pixels,
                         int pitch) {
    auto* const bits = static_cast<uint32_t*>(const_cast<void*>(pixels));
    return Image(pixman_image_create_bits(format, width, height, bits, pitch));
  }

  bool BlitOn(const Image& target, const Rects& places, PictureId picture) {
    const pixman_op_t op = sources_[picture].opaque ? PIXMAN_OP_SRC : PIXMAN_OP_OVER;
    for (const VuRect& r : places)
      pixman_image_composite32(op, pictures_[picture].get(), nullptr, target.get(), 0, 0, 0, 0, r.x,
                               r.y, r.width, r.height);
    return true;
  }

  void Composite(pixman_op_t op, const Image& source, pixman_image_t* mask, const VuRect& r) {
    pixman_image_composite32(op, source.get(), mask, image_.get(), 0, 0, 0, 0, r.x, r.y, r.width,
                             r.height);
  }

  const std::vector<Picture> sources_ = MakePictures();
  const std::vector<Coverage> coverage_ = MakeMasks();
  Image image_;
  Image narrowImage_;
  std::vector<Image> pictures_;
  std::vector<Image> masks_;
};

}  // namespace

std::unique_ptr<Peer> MakePixmanPeer() {
  return std::make_unique<PixmanPeer>();
}

}  // namespace ZIRK::bench
