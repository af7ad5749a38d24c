#pragma once

namespace ZIRK {

/// The longest side, in pixels, that the textures of every backend can have. It limits glyph
/// atlases, and a backend that does not know its own limit reports it.
constexpr int kMaxTextureSide = 2048;

}  // namespace ZIRK
