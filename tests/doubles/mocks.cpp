#include "doubles/mocks.h"

namespace ZIRK::doubles {

// Out of line, since inline ones cost every file half a minute of compilation.
MockBitmap::MockBitmap() = default;
MockBitmap::~MockBitmap() = default;
MockGraphics::MockGraphics() = default;
MockGraphics::~MockGraphics() = default;
MockFont::MockFont() = default;
MockFont::~MockFont() = default;

}  // namespace ZIRK::doubles
