#pragma once

#include <array>
#include <optional>

#include "forwarding.h"

/// @file
/// The objects that a recorded program gets: each forwards to the real one, which it owns.

namespace ZIRK::trace {

/// A surface, whose pixels are looked at where the program may have written them.
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

  ZIRK_TRACE_SURFACE_OPERATIONS(ZIRK_TRACE_OVERRIDE)

  // The real surface tells two of the four factors.

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
      recorder.Write(Operation::PixelsWritten, id, whole, recorder.ContentOf(pixels));
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

  const Id context_;
  const CreatedValue created_;
  std::optional<std::array<VuBlendingFactor, 4>> factors_;  ///< Where the latest ones were four.
  std::vector<uint8_t> before_;  ///< The pixels when they were locked for writing.
};

class TracedBitmap final : public TracedSurface<VuBitmapImpl> {
 public:
  using TracedSurface::TracedSurface;
};

class TracedScreen final : public TracedSurface<VuScreenImpl> {
 public:
  using TracedSurface::TracedSurface;

  void SwapBuffers() override {
    real_->SwapBuffers();
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
