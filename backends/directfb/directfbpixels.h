#pragma once

#include <directfb.h>

#include <utility>

#include "software/pixelbuffer.h"

namespace ZIRK::backends {

/// The pixels of an IDirectFBSurface, in memory while they are locked; or a copy, which is there at
/// all times.
class DirectFbPixels {
 public:
  /// Those of `surface`, which lives as long and has this size and format.
  DirectFbPixels(IDirectFBSurface* surface, int width, int height, VuPixelFormat format)
      : surface_(surface), buffer_(PixelBuffer::Elsewhere(width, height, format)) {}
  explicit DirectFbPixels(PixelBuffer copy) : surface_(nullptr), buffer_(std::move(copy)) {}

  // Locks are counted. Both calls are made with DirectFB's mutex held.

  /// False after an error line, or once DirectFB has ended.
  bool Lock();
  void Unlock();
  bool IsLocked() const { return locks_ > 0; }

  /// Always has the size and format; the pixels only while they are locked.
  PixelBuffer& Buffer() { return buffer_; }
  const PixelBuffer& Buffer() const { return buffer_; }
  Box Bounds() const { return buffer_.Bounds(); }

 private:
  IDirectFBSurface* const surface_;  ///< Null for a copy.
  PixelBuffer buffer_;
  int locks_ = 0;
};

/// Keeps pixels locked in its scope.
class DirectFbLock {
 public:
  /// Null needs no lock.
  explicit DirectFbLock(DirectFbPixels* pixels)
      : pixels_(pixels), granted_(!pixels || pixels->Lock()) {}
  ~DirectFbLock() {
    if (pixels_ && granted_) pixels_->Unlock();
  }
  DirectFbLock(const DirectFbLock&) = delete;
  DirectFbLock& operator=(const DirectFbLock&) = delete;

  explicit operator bool() const { return granted_; }

 private:
  DirectFbPixels* const pixels_;
  const bool granted_;
};

}  // namespace ZIRK::backends
