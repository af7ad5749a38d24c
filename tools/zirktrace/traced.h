#pragma once

#include "forwarding.h"

/// @file
/// The objects that a recorded program gets: each forwards to the real one, which it owns.

namespace ZIRK::trace {

/// A surface, whose pixels are looked at where the program may have written them.
template <class Base>
class TracedSurface : public Base {
 public:
  TracedSurface(Base* real, Id id) : real_(real), id_(id) {}
  ~TracedSurface() override {
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  VuBitmapImpl* Real() const { return real_; }
  Id GetId() const { return id_; }

  ZIRK_TRACE_SURFACE_OPERATIONS(ZIRK_TRACE_OVERRIDE)

  bool Lock(bool write) override {
    const bool isLocked = real_->Lock(write);
    if (isLocked && write && Recorder::Get().IsOn()) before_ = LockedPixels();
    Recorder::Get().Write(Operation::Lock, id_, write, isLocked);
    return isLocked;
  }

  bool Unlock() override {
    const std::vector<uint8_t> after = before_.empty() ? std::vector<uint8_t>() : LockedPixels();
    const VuBitmapInfo info = real_->GetInfo();
    const bool isUnlocked = real_->Unlock();
    Recorder::Get().Write(Operation::Unlock, id_, isUnlocked);
    if (isUnlocked && after.size() == before_.size()) RecordChange(info, after);
    before_.clear();
    return isUnlocked;
  }

  bool SetPixels(VuRect rect, const void* src, unsigned pitch) override {
    const bool isDone = real_->SetPixels(rect, src, pitch);
    Recorder& recorder = Recorder::Get();
    if (!recorder.IsOn()) return isDone;
    // What was refused may not be readable.
    const Id content =
        isDone ? recorder.ContentOf(TightRows(src, pitch, rect.width, rect.height)) : Id::None;
    recorder.Write(Operation::SetPixels, id_, rect, content, pitch, isDone);
    return isDone;
  }

 protected:
  Base* const real_;
  const Id id_;

 private:
  std::vector<uint8_t> TightRows(const void* pixels, size_t pitch, int width, int height) const {
    const size_t row = static_cast<size_t>(width) * BytesPerPixel(real_->GetInfo().format);
    std::vector<uint8_t> tight;
    tight.reserve(row * static_cast<size_t>(height));
    const auto* from = static_cast<const uint8_t*>(pixels);
    for (int y = 0; y < height; ++y, from += pitch) tight.insert(tight.end(), from, from + row);
    return tight;
  }

  /// Empty where the backend does not show them.
  std::vector<uint8_t> LockedPixels() const {
    const VuBitmapInfo info = real_->GetInfo();
    if (!info.pixels || info.pitch <= 0) return {};
    return TightRows(info.pixels, static_cast<size_t>(info.pitch), info.width, info.height);
  }

  /// Records the rows from the first to the last one that differ.
  void RecordChange(const VuBitmapInfo& info, const std::vector<uint8_t>& after) {
    const size_t row = static_cast<size_t>(info.width) * BytesPerPixel(info.format);
    const auto first = std::mismatch(after.begin(), after.end(), before_.begin()).first;
    if (row == 0 || first == after.end()) return;
    const auto last = std::mismatch(after.rbegin(), after.rend(), before_.rbegin()).first;
    const auto top = static_cast<size_t>(first - after.begin()) / row;
    const auto bottom = static_cast<size_t>(after.rend() - last - 1) / row + 1;
    const Id content = Recorder::Get().ContentOf({after.data() + top * row, (bottom - top) * row});
    const VuRect part{0, static_cast<int>(top), info.width, static_cast<int>(bottom - top)};
    Recorder::Get().Write(Operation::PixelsWritten, id_, part, content);
  }

  std::vector<uint8_t> before_;  ///< The pixels when they were locked for writing.
};

class TracedBitmap final : public TracedSurface<VuBitmapImpl> {
 public:
  using TracedSurface::TracedSurface;
};

class TracedScreen final : public TracedSurface<VuScreenImpl> {
 public:
  using TracedSurface::TracedSurface;

  ZIRK_TRACE_SCREEN_OPERATIONS(ZIRK_TRACE_OVERRIDE)
};

class TracedGraphics final : public VuGraphicsImpl {
 public:
  TracedGraphics(VuGraphicsImpl* real, Id id) : real_(real), id_(id) {}
  ~TracedGraphics() override {
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  ZIRK_TRACE_CONTEXT_OPERATIONS(ZIRK_TRACE_OVERRIDE)

 private:
  VuGraphicsImpl* const real_;
  const Id id_;
};

class TracedCompositor final : public VuCompositorImpl {
 public:
  TracedCompositor(VuCompositorImpl* real, Id id) : real_(real), id_(id) {}
  ~TracedCompositor() override {
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  ZIRK_TRACE_COMPOSITOR_OPERATIONS(ZIRK_TRACE_OVERRIDE)

 private:
  VuCompositorImpl* const real_;
  const Id id_;
};

}  // namespace ZIRK::trace
