#pragma once

#include <zirk/impl/vuscreenimpl.h>

#include <memory>

#include "software/softwarerenderer.h"
#include "surface/drawnsurface.h"

namespace ZIRK::backends {

/// A surface in memory, drawn by the processor. `Base` is VuBitmapImpl or VuScreenImpl.
///
/// Sources and masks are what its PixelSources know; anything else draws nothing, with an error
/// line.
template <class Base>
class SoftwareSurface : public DrawnSurface<Base, SoftwareRenderer> {
 public:
  using DrawnSurface<Base, SoftwareRenderer>::DrawnSurface;

  PixelBuffer& Pixels() { return this->Drawing().Buffer(); }
  const PixelBuffer& Pixels() const { return this->Drawing().Buffer(); }
  /// What has changed since the last TakeDamage().
  const Box& Damage() const { return this->Drawing().Touched(); }
  Box TakeDamage() { return this->Drawing().TakeTouched(); }

  void Finish() override {}
  void Flush() override {}

  bool IsTextureBacked() const override { return false; }
};

/// A texture that holds what a bitmap held when it was last looked at.
class BitmapMirror {
 public:
  virtual ~BitmapMirror() = default;
  virtual bool HasTexture() const = 0;
};

/// An off-screen bitmap.
class SoftwareBitmap final : public SoftwareSurface<VuBitmapImpl> {
 public:
  using SoftwareSurface::SoftwareSurface;

  bool IsTextureBacked() const final { return mirror_ && mirror_->HasTexture(); }

  /// The bitmap's mirror, null at first, goes with it. Who puts it there keeps it up to date, by
  /// TakeDamage().
  std::unique_ptr<BitmapMirror>& Mirror() { return mirror_; }

 private:
  std::unique_ptr<BitmapMirror> mirror_;
};

}  // namespace ZIRK::backends
