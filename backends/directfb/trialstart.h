#pragma once

#include <directfb.h>

namespace ZIRK::backends {

/// Starts DirectFB for a trial in a child process, and ends it there. Where a start fails, DirectFB
/// 1.7 more often than not takes the process with it: it lets go of what a thread of its own still
/// uses. Bad options end the process, too. What DirectFB says goes unheard, unless `aloud`.
///
/// Returns what the start came to; DFB_DEAD if the child came to an end before it could say, and
/// DFB_TIMEOUT if twice it did not come to any.
DFBResult TryToStartDirectFb(bool aloud);

}  // namespace ZIRK::backends
