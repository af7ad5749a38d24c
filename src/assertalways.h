#pragma once

// Assertions guard what applications and plug-ins pass in, so they stay on in every build type:
// an NDEBUG from the build's flags ends here. Include this in place of <cassert>.
#undef NDEBUG
#include <cassert>
