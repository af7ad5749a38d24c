#pragma once

#include <directfb.h>

#include <utility>

#include "software/pixelbuffer.h"

namespace ZIRK::backends {

/// The pixels of an IDirectFBSurface, which are accessible while they are locked; or a copy, which
/// is always accessible.
class DirectFbPixels {
 public:
  /// The pixels of `surface`, which must outlive the object and have this size and format.
  DirectFbPixels(IDirectFBSurface* surface, int width, int height, VuPixelFormat format)
      : surface_(surface), buffer_(PixelBuffer::Elsewhere(width, height, format)) {}
  explicit DirectFbPixels(PixelBuffer copy) : surface_(nullptr), buffer_(std::move(copy)) {}

  // Locks are counted. The caller of both functions holds DirectFB's mutex.

  /// False after an error line, or once DirectFB has ended.
  bool Lock();
  void Unlock();
  bool IsLocked() const { return locks_ > 0; }

  /// Always has the size and format, but the pixels only while they are locked.
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
