#pragma once

#include <xf86drm.h>
#include <xf86drmMode.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ZIRK::backends {

/// The calls that reach the kernel's display drivers; tests replace them.
struct DrmCalls {
  /// A descriptor, or -1.
  int (*Open)(const char* path);
  decltype(&drmIoctl) Ioctl = drmIoctl;
  decltype(&drmIsMaster) IsMaster = drmIsMaster;
  decltype(&drmSetMaster) SetMaster = drmSetMaster;
  decltype(&drmDropMaster) DropMaster = drmDropMaster;
  decltype(&drmGetCap) GetCap = drmGetCap;
  decltype(&drmHandleEvent) HandleEvent = drmHandleEvent;
  decltype(&drmCrtcGetSequence) GetSequence = drmCrtcGetSequence;
  decltype(&drmModeGetResources) GetResources = drmModeGetResources;
  decltype(&drmModeGetConnector) GetConnector = drmModeGetConnector;
  decltype(&drmModeGetEncoder) GetEncoder = drmModeGetEncoder;
  decltype(&drmModeGetCrtc) GetCrtc = drmModeGetCrtc;
  decltype(&drmModeSetCrtc) SetCrtc = drmModeSetCrtc;
  decltype(&drmModeAddFB2) AddFramebuffer = drmModeAddFB2;
  decltype(&drmModeRmFB) RemoveFramebuffer = drmModeRmFB;
  decltype(&drmModeDirtyFB) SendDamage = drmModeDirtyFB;
  decltype(&drmModePageFlip) PageFlip = drmModePageFlip;
};

/// The calls in use.
DrmCalls& Drm();

/// Deletes an object of libdrm by `Free`.
template <auto Free>
struct DrmFree {
  template <typename T>
  void operator()(T* made) const {
    Free(made);
  }
};
using DrmConnector = std::unique_ptr<drmModeConnector, DrmFree<drmModeFreeConnector>>;
using DrmCrtc = std::unique_ptr<drmModeCrtc, DrmFree<drmModeFreeCrtc>>;

/// A graphics card whose displays this process sets. The process opens each card only once.
class KmsCard {
 public:
  /// Returns the card in `path`. If the process does not have it yet, opens it and becomes its
  /// master. Returns null, with the reason in `error`, if there is no card or another program is
  /// its master; `isTaken` is set in the latter case.
  static std::shared_ptr<KmsCard> Acquire(const std::string& path, std::string& error,
                                          bool& isTaken);
  ~KmsCard();
  KmsCard(const KmsCard&) = delete;
  KmsCard& operator=(const KmsCard&) = delete;

  const std::string& Path() const { return path_; }
  int Descriptor() const { return descriptor_; }

  /// Lets other programs become the card's master while nothing is shown.
  void Yield();

  /// The connectors that a display is plugged into, in the card's order.
  std::vector<DrmConnector> Connectors() const;

  /// Reserves a CRTC for this connector that no other display of the process uses; 0 if none is
  /// left.
  uint32_t TakeCrtc(const drmModeConnector& connector);
  void ReturnCrtc(uint32_t crtc);

  /// Requests that another page be shown at the next vertical sync. Returns false, with the reason
  /// in errno, if the driver refuses.
  bool Flip(uint32_t crtc, uint32_t framebuffer);
  /// Waits until the last flip is done. Returns false if that takes longer than `timeout`; later
  /// calls do not wait for that flip again.
  bool WaitForFlip(uint32_t crtc, std::chrono::milliseconds timeout);

 private:
  struct Crtc {
    bool isTaken = false;
    bool isFlipping = false;
  };

  KmsCard(std::string path, int descriptor);

  std::vector<uint32_t> CrtcsFor(const drmModeConnector& connector) const;

  const std::string path_;
  const int descriptor_;
  std::mutex mutex_;  ///< For `crtcs_`, and for reading events.
  /// By their IDs. Pending events point to the entries, so entries are never removed.
  std::map<uint32_t, Crtc> crtcs_;
};

}  // namespace ZIRK::backends
