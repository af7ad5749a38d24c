#include "fb/fbscreen.h"

#include <zirk/impl/log.h>

#include <utility>

namespace ZIRK::backends {

std::unique_ptr<FbScreen> FbScreen::Open(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                         const VuScreenDescription& description,
                                         std::shared_ptr<PixelSourceResolver> resolver,
                                         const std::string& reason) {
  std::string error;
  auto device = DisplayDevice::Open(description.index,
                                    {.width = description.width,
                                     .height = description.height,
                                     .doubleBuffer = description.buffers > 1,
                                     .format = description.format},
                                    error);
  const std::string why = reason.empty() || error.empty() ? reason + error : reason + "; " + error;
  if (!device)
    ZIRK_LOG_WARNING("%s: the screen stays in memory", why.c_str());
  else if (!why.empty())
    ZIRK_LOG_WARNING("%s: the screen is shown by the processor, %s", why.c_str(),
                     device->Description().c_str());
  else
    ZIRK_LOG_INFO("screen %d: %s", description.index, device->Description().c_str());
  return std::make_unique<FbScreen>(std::move(reservation), description, std::move(device),
                                    std::move(resolver));
}

FbScreen::FbScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
                   const VuScreenDescription& description, std::unique_ptr<DisplayDevice> device,
                   std::shared_ptr<PixelSourceResolver> resolver)
    : Surface(std::move(reservation), description.width, description.height, description.format,
              std::move(resolver)),
      Presenter(description.buffers < 2),
      device_(std::move(device)) {}

void FbScreen::Present() {
  const Box damage = Drawing().TakeTouched();
  if (!device_) return;
  const PixelBuffer& pixels = Drawing().Buffer();
  device_->Present(pixels.Row(0), pixels.Pitch(), pixels.Format(), damage);
}

}  // namespace ZIRK::backends
