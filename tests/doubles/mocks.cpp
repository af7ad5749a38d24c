#include "doubles/mocks.h"

namespace ZIRK::doubles {

// Here, since every file that has them inline takes half a minute more to compile.
MockBitmap::MockBitmap() = default;
MockBitmap::~MockBitmap() = default;
MockGraphics::MockGraphics() = default;
MockGraphics::~MockGraphics() = default;
MockFont::MockFont() = default;
MockFont::~MockFont() = default;

}  // namespace ZIRK::doubles
