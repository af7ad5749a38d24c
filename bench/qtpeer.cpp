#include <QImage>
#include <QPainter>

#include "peer.h"

namespace ZIRK::bench {

namespace {

constexpr auto kPremultiplied = QImage::Format_ARGB32_Premultiplied;

QImage MakeImage(const Picture& p) {
  return QImage(reinterpret_cast<const uchar*>(p.pixels.data()), p.width, p.height, p.width * 4,
                p.opaque ? QImage::Format_RGB32 : kPremultiplied)
      .copy();
}

QColor ToColor(VuColor color) {
  return QColor::fromRgba(color.argb);
}

/// The raster engine. It has neither masks nor tints: those are made on a picture beside.
class QtPeer final : public MemoryPeer {
 public:
  QtPeer()
      : image_(reinterpret_cast<uchar*>(Target()), kWidth, kHeight, kPitch, kPremultiplied),
        painter_(&image_),
        narrowPainter_(&narrowImage_) {
    narrowImage_.fill(0);
    for (const Picture& p : MakePictures()) {
      pictures_.push_back(MakeImage(p));
      Picture colorsOnly{p.width, p.height, true, p.Straight()};
      for (uint32_t& pixel : colorsOnly.pixels) pixel |= 0xFF000000u;
      colorsOnly_.push_back(MakeImage(colorsOnly));
    }
    for (const Coverage& m : MakeMasks()) {
      Picture mask{m.width, m.height, false, {}};
      for (const uint8_t alpha : m.alpha) mask.pixels.push_back(alpha * 0x01010101u);
      masks_.push_back(MakeImage(mask));
    }
  }

  const char* Name() const override { return "Qt"; }

  bool Fill(const Rects& places, VuColor color) override {
    const QColor fill = ToColor(color);
    for (const VuRect& r : places) painter_.fillRect(r.x, r.y, r.width, r.height, fill);
    return Finish();
  }

  bool FillMasked(const Rects& places, VuColor color, MaskId mask) override {
    Beside beside(masks_[mask].size());
    for (const VuRect& r : places) {
      beside.Fill(QPainter::CompositionMode_Source, color);
      beside.Draw(QPainter::CompositionMode_DestinationIn, masks_[mask]);
      painter_.drawImage(r.x, r.y, beside.Image());
    }
    return Finish();
  }

  bool DrawLines(const Lines& lines, VuColor color) override {
    painter_.setPen(ToColor(color));
    for (const Line& l : lines) painter_.drawLine(l.from.x, l.from.y, l.to.x, l.to.y);
    return Finish();
  }

  bool Blit(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) painter_.drawImage(r.x, r.y, pictures_[picture]);
    return Finish();
  }

  bool BlitOn565(const Rects& places, PictureId picture) override {
    for (const VuRect& r : places) narrowPainter_.drawImage(r.x, r.y, pictures_[picture]);
    return Finish();
  }

  /// Multiplying is exact between opaque pixels, so the picture gets its alpha back afterwards.
  bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) override {
    Beside beside(pictures_[picture].size());
    for (size_t i = 0; i < places.size(); ++i) {
      beside.Draw(QPainter::CompositionMode_Source, colorsOnly_[picture]);
      beside.Fill(QPainter::CompositionMode_Multiply, colors[i]);
      beside.Draw(QPainter::CompositionMode_DestinationIn, pictures_[picture]);
      painter_.drawImage(places[i].x, places[i].y, beside.Image());
    }
    return Finish();
  }

  bool BlitMasked(const Rects& places, PictureId picture, MaskId mask) override {
    Beside beside(masks_[mask].size());
    for (const VuRect& r : places) {
      beside.Draw(QPainter::CompositionMode_Source, pictures_[picture]);
      beside.Draw(QPainter::CompositionMode_DestinationIn, masks_[mask]);
      painter_.drawImage(r.x, r.y, beside.Image());
    }
    return Finish();
  }

  bool BlitScaled(const Rects& places, PictureId picture, bool smooth) override {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
    for (const VuRect& r : places)
      painter_.drawImage(QRect(r.x, r.y, r.width, r.height), pictures_[picture]);
    return Finish();
  }

  bool BlitRotated(const Rects& places, PictureId picture, double degrees) override {
    painter_.setRenderHint(QPainter::SmoothPixmapTransform);
    // Slanted edges are smooth in our picture, so in this one too.
    painter_.setRenderHint(QPainter::Antialiasing);
    const QImage& image = pictures_[picture];
    for (const VuRect& r : places) {
      painter_.translate(r.x + r.width / 2.0, r.y + r.height / 2.0);
      painter_.rotate(-degrees);
      painter_.drawImage(-image.width() / 2, -image.height() / 2, image);
      painter_.resetTransform();
    }
    painter_.setRenderHint(QPainter::Antialiasing, false);
    return Finish();
  }

 private:
  /// A picture to compose on, with its painter.
  class Beside {
   public:
    explicit Beside(QSize size) : image_(size, kPremultiplied), painter_(&image_) {}

    void Fill(QPainter::CompositionMode mode, VuColor color) {
      painter_.setCompositionMode(mode);
      painter_.fillRect(image_.rect(), ToColor(color));
    }
    void Draw(QPainter::CompositionMode mode, const QImage& image) {
      painter_.setCompositionMode(mode);
      painter_.drawImage(0, 0, image);
    }
    const QImage& Image() const { return image_; }

   private:
    QImage image_;
    QPainter painter_;
  };

  /// Filling returns with the upper halves of the vector registers in use, which would slow down
  /// the peers that come after.
  bool Finish() {
#if defined(__x86_64__) || defined(__i386__)
    if (__builtin_cpu_supports("avx")) __asm__ volatile("vzeroupper" ::: "memory");
#endif
    return true;
  }

  QImage image_;
  QPainter painter_;
  QImage narrowImage_{kWidth, kHeight, QImage::Format_RGB16};
  QPainter narrowPainter_;
  std::vector<QImage> pictures_;
  std::vector<QImage> colorsOnly_;
  std::vector<QImage> masks_;
};

}  // namespace

std::unique_ptr<Peer> MakeQtPeer() {
  return std::make_unique<QtPeer>();
}

}  // namespace ZIRK::bench
