#pragma once

#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vuscreendescription.h>

#include <memory>
#include <string>

#include "fb/displaydevice.h"
#include "software/softwarerenderer.h"
#include "surface/presenter.h"
#include "surface/surface.h"

namespace ZIRK::backends {

/// A screen: drawn in cached memory, and copied to the device when the frame is done.
class FbScreen final : public Surface<VuScreenImpl, SoftwareRenderer>, private Presenter {
 public:
  /// Without a device the picture stays in memory, and a warning is logged. If `reason` is not
  /// empty, it explains why there is no better screen; a warning with that reason is then always
  /// logged.
  static std::unique_ptr<FbScreen> Open(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                        const VuScreenDescription& description,
                                        std::shared_ptr<PixelSourceResolver> resolver,
                                        const std::string& reason = {});

  /// `device` is null if the picture stays in memory.
  FbScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
           const VuScreenDescription& description, std::unique_ptr<DisplayDevice> device,
           std::shared_ptr<PixelSourceResolver> resolver);

  void SwapBuffers() override { Swap(); }
  void Finish() override { ShowIfSingleBuffered(); }
  void Flush() override { ShowIfSingleBuffered(); }

 private:
  void Present() override;

  const std::unique_ptr<DisplayDevice> device_;
};

}  // namespace ZIRK::backends
