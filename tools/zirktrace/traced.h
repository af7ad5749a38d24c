#pragma once

#include <array>
#include <optional>

#include "forwarding.h"
#include "lockedpixels.h"

/// @file The objects that a recorded program receives. Each owns the real object and forwards to
/// it.

namespace ZIRK::trace {

/// A surface that records its operations, and compares its pixels if the program may have written
/// them.
template <class Base>
class TracedSurface : public Base, private Described {
 public:
  TracedSurface(Base* real, Id context, const CreatedValue& created)
      : real_(real), id_(created.id), context_(context), created_(created) {
    Recorder::Get().Add(id_, *this);
  }
  ~TracedSurface() override {
    Recorder::Get().Remove(id_);
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  VuBitmapImpl* Real() const { return real_; }
  Id GetId() const { return id_; }

  ZIRK_TRACE_OTHER_SURFACE_OPERATIONS(ZIRK_TRACE_OVERRIDE)
#define ZIRK_TRACE_OVERRIDE_DRAWING(number, ...) ZIRK_TRACE_OVERRIDE_BY(Changing(), __VA_ARGS__)
  ZIRK_TRACE_DRAWING_OPERATIONS(ZIRK_TRACE_OVERRIDE_DRAWING)
#undef ZIRK_TRACE_OVERRIDE_DRAWING

  // The real surface returns only two of the four factors.

  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) override {
    factors_.reset();
    real_->SetBlendingFunc(src, dst);
    Recorder::Get().Write(Operation::SetBlendingFunc, id_, src, dst);
  }

  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) override {
    factors_ = {srcColor, dstColor, srcAlpha, dstAlpha};
    real_->SetBlendingFunc(srcColor, dstColor, srcAlpha, dstAlpha);
    Recorder::Get().Write(Operation::SetBlendingFuncs, id_, srcColor, dstColor, srcAlpha, dstAlpha);
  }

  bool Lock(bool write) override {
    const bool isLocked = real_->Lock(write);
    Recorder& recorder = Recorder::Get();
    if (isLocked && write && recorder.IsOn()) locked_.Begin(real_->GetInfo());
    recorder.Write(Operation::Lock, id_, write, isLocked);
    return isLocked;
  }

  bool Unlock() override {
    Recorder& recorder = Recorder::Get();
    VuRect part{};
    Id content = Id::None;
    if (locked_.HasBegun()) {
      const VuBitmapInfo info = real_->GetInfo();
      part = locked_.End(info);
      if (part.width > 0) content = recorder.ContentOf(RowsOf(info, part));
    }
    const bool isUnlocked = real_->Unlock();
    recorder.Write(Operation::Unlock, id_, isUnlocked);
    if (part.width > 0) recorder.Write(Operation::PixelsWritten, id_, part, content);
    return isUnlocked;
  }

  bool SetPixels(VuRect rect, const void* src, unsigned pitch) override {
    const bool isDone = Changing()->SetPixels(rect, src, pitch);
    Recorder& recorder = Recorder::Get();
    if (!recorder.IsOn()) return isDone;
    // If the call failed, its pixels may not be readable.
    const Id content = isDone ? recorder.ContentOf(RowsOf(src, pitch, rect.width, rect.height,
                                                          real_->GetInfo().format))
                              : Id::None;
    recorder.Write(Operation::SetPixels, id_, rect, content, pitch, isDone);
    return isDone;
  }

 protected:
  /// Returns the real surface for operations that may change its pixels.
  Base* Changing() {
    locked_.Forget();
    return real_;
  }

  Base* const real_;
  const Id id_;

 private:
  void Describe() override {
    Recorder& recorder = Recorder::Get();
    const auto [id, width, height, format] = created_;
    if constexpr (std::is_same_v<Base, VuScreenImpl>)
      recorder.Write(Operation::CreateScreenAs, context_,
                     VuScreenDescription{width, height, 0, 2, format, false}, created_);
    else
      recorder.Write(Operation::CreateBitmap, context_, width, height, format, created_);
    const VuRect whole{0, 0, width, height};
    std::vector<uint8_t> pixels(size_t{BytesPerPixel(format)} * static_cast<size_t>(width) *
                                static_cast<size_t>(height));
    if (!pixels.empty() && real_->GetPixels(whole, pixels.data()))
      recorder.Write(Operation::PixelsWritten, id, whole, recorder.ContentOf(AsRow(pixels)));
    DescribeState();
  }

  void DescribeState() {
    Recorder& recorder = Recorder::Get();
    VuBlendingFactor src{}, dst{};
    real_->GetBlendingFunc(src, dst);
    recorder.Write(Operation::SetClippingRect, id_, real_->GetClippingRect());
    recorder.Write(Operation::SetBlendingFunc, id_, src, dst);
    if (factors_)
      recorder.Write(Operation::SetBlendingFuncs, id_, (*factors_)[0], (*factors_)[1],
                     (*factors_)[2], (*factors_)[3]);
    recorder.Write(Operation::SetBlendEnabled, id_, real_->GetBlendEnabled());
    recorder.Write(Operation::SetBlendColor, id_, real_->GetBlendColor());
    recorder.Write(Operation::SetScaleMode, id_, real_->GetScaleMode());
  }

  const Id context_;
  const CreatedValue created_;
  std::optional<std::array<VuBlendingFactor, 4>> factors_;  ///< Set if the latest call set four.
  LockedPixels locked_;
};

class TracedBitmap final : public TracedSurface<VuBitmapImpl> {
 public:
  using TracedSurface::TracedSurface;
};

class TracedScreen final : public TracedSurface<VuScreenImpl> {
 public:
  using TracedSurface::TracedSurface;

  void SwapBuffers() override {
    Changing()->SwapBuffers();
    Recorder::Get().Write(Operation::SwapBuffers, id_);
    Recorder::Get().EndFrame();
  }
};

class TracedGraphics final : public VuGraphicsImpl, private Described {
 public:
  TracedGraphics(VuGraphicsImpl* real, Id id, const char* file, bool flag)
      : real_(real), id_(id), file_(file), flag_(flag) {
    Recorder::Get().Add(id_, *this);
    Describe();
  }
  ~TracedGraphics() override {
    Recorder::Get().Remove(id_);
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  ZIRK_TRACE_CONTEXT_OPERATIONS(ZIRK_TRACE_OVERRIDE)

 private:
  void Describe() override { Recorder::Get().Write(Operation::OpenContext, id_, file_, flag_); }

  VuGraphicsImpl* const real_;
  const Id id_;
  const char* const file_;  ///< Of the plug-in.
  const bool flag_;
};

class TracedCompositor final : public VuCompositorImpl, private Described {
 public:
  TracedCompositor(VuCompositorImpl* real, Id id, const char* file, bool flag)
      : real_(real), id_(id), file_(file), flag_(flag) {
    Recorder::Get().Add(id_, *this);
    Describe();
  }
  ~TracedCompositor() override {
    Recorder::Get().Remove(id_);
    delete real_;
    Recorder::Get().Write(Operation::Close, id_);
  }

  ZIRK_TRACE_COMPOSITOR_OPERATIONS(ZIRK_TRACE_OVERRIDE)

 private:
  void Describe() override {
    Recorder::Get().Write(Operation::OpenCompositor, id_, file_, flag_);
    int count = 0;
    real_->GetConfiguration(nullptr, count);
    std::vector<LayerDescription> layers(static_cast<size_t>(std::max(count, 0)));
    if (layers.empty()) return;
    real_->GetConfiguration(layers.data(), count);
    Recorder::Get().Write(Operation::SetConfiguration, id_, layers, count);
  }

  VuCompositorImpl* const real_;
  const Id id_;
  const char* const file_;  ///< Of the plug-in.
  const bool flag_;
};

}  // namespace ZIRK::trace
