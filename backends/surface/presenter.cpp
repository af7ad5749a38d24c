#include "surface/presenter.h"

#include <zirk/impl/log.h>

#include <new>

#include "surface/drawtimer.h"

namespace ZIRK::backends {

void Presenter::Show() {
  const DrawTimer timer = DrawTimer::Swapping();
  try {
    Present();
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("no memory to show a frame with");
  }
}

}  // namespace ZIRK::backends
