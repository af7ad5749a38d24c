#pragma once

#include <cstdint>

namespace ZIRK::bench {

/// The option of prctl(2) that says where counting begins (0 follows) and ends (1 follows).
constexpr uint32_t kMark = 0x5A49524Bu;

}  // namespace ZIRK::bench
