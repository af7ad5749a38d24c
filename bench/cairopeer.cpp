#include <cairo.h>

#include "peer.h"

namespace ZIRK::bench {

namespace {

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Context = std::unique_ptr<cairo_t, Release>;
using Pattern = std::unique_ptr<cairo_pattern_t, Release>;

Surface MakeSurface(cairo_format_t format, int width, int height, const void* pixels, int pitch) {
  auto* const bytes = static_cast<unsigned char*>(const_cast<void*>(pixels));
  return Surface(cairo_image_surface_create_for_data(bytes, format, width, height, pitch));
}

void SetColor(const Context& context, VuColor color) {
  const auto channel = [=](int shift) { return (color.argb >> shift & 255) / 255.0; };
  cairo_set_source_rgba(context.get(), channel(16), channel(8), channel(0), channel(24));
}

/// The channels of a picture, not premultiplied, as a mask each.
class Planes {
 public:
  explicit Planes(const Picture& p) {
    for (const int shift : {0, 8, 16, 24}) {
      std::vector<uint8_t>& bytes = bytes_.emplace_back();
      for (const uint32_t pixel : p.Straight())
        bytes.push_back(static_cast<uint8_t>(pixel >> shift & 255));
      masks_.push_back(MakeSurface(CAIRO_FORMAT_A8, p.width, p.height, bytes.data(), p.width));
    }
  }

  /// The channel that stands `shift` bits up in a pixel.
  cairo_surface_t* At(int shift) const { return masks_[static_cast<size_t>(shift / 8)].get(); }

 private:
  std::vector<std::vector<uint8_t>> bytes_;
  std::vector<Surface> masks_;
};

class CairoPeer final : public MemoryPeer {
 public:
  CairoPeer()
      : surface_(MakeSurface(CAIRO_FORMAT_ARGB32, kWidth, kHeight, Target(), kPitch)),
        context_(cairo_create(surface_.get())) {
    for (const Picture& p : sources_) {
      pictures_.push_back(MakeSurface(p.opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, p.width,
                                      p.height, p.pixels.data(), p.width * 4));
      planes_.emplace_back(p);
    }
    for (const Coverage& m : coverage_)
      masks_.push_back(MakeSurface(CAIRO_FORMAT_A8, m.width, m.height, m.alpha.data(), m.width));
  }

  const char* Name() const override { return "Cairo"; }

  bool Fill(const Rects& places, VuColor color) override {
    SetColor(context_, color);
    for (const VuRect& r : places) {
      cairo_rectangle(context_.get(), r.x, r.y, r.width, r.height);
      cairo_fill(context_.get());
    }
    return Finish();
  }

  bool FillMasked(const Rects& places, VuColor color, MaskId mask) override {
    SetColor(context_, color);
    for (const VuRect& r : places) cairo_mask_surface(context_.get(), masks_[mask].get(), r.x, r.y);
    return Finish();
  }

  bool DrawLines(const Lines& lines, VuColor color) override {
    SetColor(context_, color);
    cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
    cairo_set_line_width(context_.get(), 1);
    cairo_set_line_cap(context_.get(), CAIRO_LINE_CAP_SQUARE);
    for (const Line& l : lines) {
      cairo_move_to(context_.get(), l.from.x + 0.5, l.from.y + 0.5);
      cairo_line_to(context_.get(), l.to.x + 0.5, l.to.y + 0.5);
      cairo_stroke(context_.get());
    }
    cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_DEFAULT);
    return Finish();
  }

  bool Blit(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) {
      cairo_set_source_surface(context_.get(), pictures_[picture].get(), r.x, r.y);
      cairo_paint(context_.get());
    }
    return Finish();
  }

  /// The tinted colours are added up channel by channel, without their alpha, and then drawn
  /// through it. Cairo's multiplying operator would take three times as long.
  bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) override {
    const Picture& p = sources_[picture];
    const Planes& planes = planes_[picture];
    const Surface tinted(cairo_image_surface_create(CAIRO_FORMAT_RGB24, p.width, p.height));
    const Context tinting(cairo_create(tinted.get()));
    for (size_t i = 0; i < places.size(); ++i) {
      cairo_set_operator(tinting.get(), CAIRO_OPERATOR_SOURCE);
      SetColor(tinting, VuColor{0xFF000000});
      cairo_paint(tinting.get());
      cairo_set_operator(tinting.get(), CAIRO_OPERATOR_ADD);
      for (const int shift : {16, 8, 0}) {
        SetColor(tinting, VuColor{colors[i].argb & (0xFF000000u | 0xFFu << shift)});
        cairo_mask_surface(tinting.get(), planes.At(shift), 0, 0);
      }
      cairo_set_source_surface(context_.get(), tinted.get(), places[i].x, places[i].y);
      cairo_mask_surface(context_.get(), planes.At(24), places[i].x, places[i].y);
    }
    return Finish();
  }

  bool BlitMasked(const Rects& places, PictureId picture, MaskId mask) override {
    for (const VuRect& r : places) {
      cairo_set_source_surface(context_.get(), pictures_[picture].get(), r.x, r.y);
      cairo_mask_surface(context_.get(), masks_[mask].get(), r.x, r.y);
    }
    return Finish();
  }

  bool BlitScaled(const Rects& places, PictureId picture, bool smooth) override {
    const Picture& p = sources_[picture];
    for (const VuRect& r : places) {
      cairo_translate(context_.get(), r.x, r.y);
      cairo_scale(context_.get(), double(r.width) / p.width, double(r.height) / p.height);
      SetSource(picture, 0, 0, CAIRO_EXTEND_PAD,
                smooth ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_NEAREST);
      cairo_rectangle(context_.get(), 0, 0, p.width, p.height);
      cairo_fill(context_.get());
      cairo_identity_matrix(context_.get());
    }
    return Finish();
  }

  bool BlitRotated(const Rects& places, PictureId picture, double degrees) override {
    const Picture& p = sources_[picture];
    for (const VuRect& r : places) {
      cairo_translate(context_.get(), r.x + r.width / 2.0, r.y + r.height / 2.0);
      cairo_rotate(context_.get(), -degrees * 3.141592653589793 / 180);
      SetSource(picture, -p.width / 2.0, -p.height / 2.0, CAIRO_EXTEND_NONE, CAIRO_FILTER_BILINEAR);
      cairo_paint(context_.get());
      cairo_identity_matrix(context_.get());
    }
    return Finish();
  }

  bool FillRounded(const Rects& places, float radius, VuColor color) override {
    constexpr double kQuarter = 1.5707963267948966;
    SetColor(context_, color);
    for (const VuRect& r : places) {
      const double left = r.x + double{radius}, right = r.x + r.width - double{radius};
      const double top = r.y + double{radius}, bottom = r.y + r.height - double{radius};
      cairo_new_sub_path(context_.get());
      cairo_arc(context_.get(), left, top, radius, 2 * kQuarter, 3 * kQuarter);
      cairo_arc(context_.get(), right, top, radius, -kQuarter, 0);
      cairo_arc(context_.get(), right, bottom, radius, 0, kQuarter);
      cairo_arc(context_.get(), left, bottom, radius, kQuarter, 2 * kQuarter);
      cairo_close_path(context_.get());
      cairo_fill(context_.get());
    }
    return Finish();
  }

  bool FillDiscs(const Rects& places, VuColor color) override {
    SetColor(context_, color);
    for (const VuRect& r : places) {
      cairo_arc(context_.get(), r.x + r.width / 2.0, r.y + r.height / 2.0, r.width / 2.0, 0,
                6.283185307179586);
      cairo_fill(context_.get());
    }
    return Finish();
  }

  bool FillGradient(const Rects& places, VuColor top, VuColor bottom) override {
    const Pattern pattern(cairo_pattern_create_linear(0, 0, 0, places[0].height));
    int stop = 0;
    for (const VuColor color : {top, bottom}) {
      const auto channel = [=](int shift) { return (color.argb >> shift & 255) / 255.0; };
      cairo_pattern_add_color_stop_rgb(pattern.get(), stop++, channel(16), channel(8), channel(0));
    }
    for (const VuRect& r : places) {
      cairo_translate(context_.get(), r.x, r.y);
      cairo_set_source(context_.get(), pattern.get());
      cairo_rectangle(context_.get(), 0, 0, r.width, r.height);
      cairo_fill(context_.get());
      cairo_identity_matrix(context_.get());
    }
    return Finish();
  }

 private:
  void SetSource(PictureId picture, double x, double y, cairo_extend_t extend,
                 cairo_filter_t filter) {
    cairo_set_source_surface(context_.get(), pictures_[picture].get(), x, y);
    cairo_pattern_set_filter(cairo_get_source(context_.get()), filter);
    cairo_pattern_set_extend(cairo_get_source(context_.get()), extend);
  }

  bool Finish() {
    cairo_surface_flush(surface_.get());
    return true;
  }

  const std::vector<Picture> sources_ = MakePictures();
  const std::vector<Coverage> coverage_ = MakeMasks();
  Surface surface_;
  Context context_;
  std::vector<Surface> pictures_;
  std::vector<Planes> planes_;
  std::vector<Surface> masks_;
};

}  // namespace

std::unique_ptr<Peer> MakeCairoPeer() {
  return std::make_unique<CairoPeer>();
}

}  // namespace ZIRK::bench
