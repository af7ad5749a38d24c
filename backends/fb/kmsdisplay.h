#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "fb/displaydevice.h"
#include "fb/kmscard.h"

namespace ZIRK::backends {

/// A display of a card, set by the kernel's mode setting (KMS) without a GPU: its pages are "dumb"
/// buffers, which the processor writes.
class KmsDisplay final : public DisplayDevice {
 public:
  /// Shows a black page on the display at `connector`, in a mode of the requested size or else in
  /// the preferred mode. Returns null, with the reason in `error`, if the driver refuses.
  static std::unique_ptr<KmsDisplay> Open(std::shared_ptr<KmsCard> card,
                                          const drmModeConnector& connector, const Request& request,
                                          std::string& error);
  ~KmsDisplay() override;
  KmsDisplay(const KmsDisplay&) = delete;
  KmsDisplay& operator=(const KmsDisplay&) = delete;

  /// The size of the preferred mode.
  static ImageSize SizeOf(const drmModeConnector& connector);
  /// For messages: the preferred mode, the depth of the pixels and the card.
  static std::string DescriptionOf(const KmsCard& card, const drmModeConnector& connector);

  int Width() const override { return copier_->Width(); }
  int Height() const override { return copier_->Height(); }
  void Present(const uint8_t* pixels, int pitch, VuPixelFormat format, const Box& damage) override;
  std::string Description() const override;

 private:
  struct Page {
    uint32_t handle = 0;
    uint32_t framebuffer = 0;
    uint32_t pitch = 0;
    size_t size = 0;
    uint8_t* pixels = nullptr;
  };
  struct Format {
    uint32_t fourcc;
    pixman_format_code_t pixman;
    unsigned bits;
  };
  using Clock = std::chrono::steady_clock;

  KmsDisplay(std::shared_ptr<KmsCard> card, const drmModeConnector& connector,
             const Request& request);

  bool Start(const Request& request, std::string& error);
  bool StartIn(const Format& format, const Request& request);
  bool MakePage(Page& page, const Format& format);
  void DeletePage(Page& page);
  void Restore();

  bool ShowOther(const Box& damage);
  void WaitForFlip();
  void DoWithoutPages(const char* why);
  void SendDamage(const Box& damage);
  void Pace();

  const std::shared_ptr<KmsCard> card_;
  uint32_t connector_;
  drmModeModeInfo mode_;
  uint32_t crtc_ = 0;
  DrmCrtc found_;  ///< The earlier state of the CRTC.
  bool set_ = false;

  std::array<Page, 2> pages_{};
  unsigned bits_ = 0;
  std::optional<ScanoutCopier> copier_;
  bool twoPages_ = false;
  unsigned shown_ = 0;
  bool flipping_ = false;  ///< The last flip may be pending.

  bool hasVblank_ = false;   ///< Flips wait for the display's vertical sync.
  bool needsDamage_ = true;  ///< Changes to the visible page must be reported.
  const bool isPaced_;
  Clock::time_point nextFrame_{};
};

}  // namespace ZIRK::backends
