#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "inputs.h"

namespace ZIRK::bench {

/// A 2D library with a premultiplied ARGB surface of kWidth x kHeight, set up once.
///
/// Each operation draws all its items one by one, over what is there, and has completed them when
/// it returns; false if the library has no such operation. Colours are not premultiplied.
class Peer {
 public:
  virtual ~Peer() = default;
  virtual const char* Name() const = 0;

  virtual bool Fill(const Rects& places, VuColor color) = 0;
  virtual bool FillMasked(const Rects& places, VuColor color, MaskId mask) = 0;
  virtual bool DrawLines(const Lines& lines, VuColor color) = 0;

  virtual bool Blit(const Rects& places, PictureId picture) = 0;
  /// Each pixel multiplied with the place's opaque colour.
  virtual bool BlitTinted(const Rects& places, PictureId picture, const Colors& colors) = 0;
  virtual bool BlitMasked(const Rects& places, PictureId picture, MaskId mask) = 0;
  /// Stretched to the place, filtered bilinearly if `smooth`.
  virtual bool BlitScaled(const Rects& places, PictureId picture, bool smooth) = 0;
  /// Turned counter-clockwise around the place's middle, filtered bilinearly.
  virtual bool BlitRotated(const Rects& places, PictureId picture, double degrees) = 0;

  /// Pixels from memory, of the picture's format, into a surface of that format.
  virtual bool Upload(const Rects&, PictureId) { return false; }

  /// As Blit(), onto a surface of the same size in RGB565.
  virtual bool BlitOn565(const Rects&, PictureId) { return false; }

  /// With smooth edges: places with round corners, the discs that they hold, and places filled from
  /// one opaque colour at the top to another at the bottom.
  virtual bool FillRounded(const Rects&, float /*radius*/, VuColor) { return false; }
  virtual bool FillDiscs(const Rects&, VuColor) { return false; }
  virtual bool FillGradient(const Rects&, VuColor /*top*/, VuColor /*bottom*/) { return false; }

  /// Copies the surface to kWidth * kHeight pixels.
  virtual void Read(uint32_t* out) = 0;
};

/// A peer that draws into memory given to it.
class MemoryPeer : public Peer {
 public:
  MemoryPeer() : target_(static_cast<uint32_t*>(std::aligned_alloc(64, kBytes))) {
    if (!target_) throw std::bad_alloc();
    std::memset(target_.get(), 0, kBytes);
  }

  void Read(uint32_t* out) override { std::memcpy(out, target_.get(), kBytes); }

 protected:
  static constexpr int kPitch = kWidth * 4;
  static constexpr size_t kBytes = size_t{kPitch} * kHeight;

  uint32_t* Target() { return target_.get(); }

 private:
  struct Free {
    void operator()(uint32_t* p) const { std::free(p); }
  };
  std::unique_ptr<uint32_t, Free> target_;
};

/// This library's own, by one of its backends; null if that does not open.
std::unique_ptr<Peer> MakeZirkPeer(const char* name, const char* backend);
std::unique_ptr<Peer> MakePixmanPeer();
std::unique_ptr<Peer> MakeCairoPeer();
std::unique_ptr<Peer> MakeSdlPeer();
std::unique_ptr<Peer> MakeQtPeer();

}  // namespace ZIRK::bench
