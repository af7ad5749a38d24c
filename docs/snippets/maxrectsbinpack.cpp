#include <zirk/backend.h>

using namespace ZIRK;

bool PlaceOne() {
  //! [snippet]
  MaxRectsBinPack bin(256, 64);
  const BinRect place = bin.Insert(100, 30);
  if (place.height == 0) return false;  // No room.
  //! [snippet]
  return true;
}
