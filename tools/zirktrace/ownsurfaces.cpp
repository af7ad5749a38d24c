#include "ownsurfaces.h"

namespace ZIRK::trace {

void OwnSurfaces::Follow(const Record& record) {
  if (record.operation == Operation::OpenContext) contexts_.insert(ObjectOf(record));
  if (record.operation == Operation::Close) contexts_.erase(ObjectOf(record));
}

VuBitmap* OwnSurfaces::Get(uint32_t which, int width, int height, VuPixelFormat format) {
  const Id id = IdOf(which);
  VuBitmap* const present = player_.Find(id);
  if (present) {
    const VuBitmapInfo info = present->GetInfo();
    if (info.width == width && info.height == height && info.format == format) return present;
  }
  if (contexts_.empty()) return nullptr;
  Id context = *contexts_.begin();
  CreatedValue created{id, width, height, format};
  Encoder fields;
  fields.Group(context, width, height, format, created);
  Record record;
  record.operation = Operation::CreateBitmap;
  record.fields = fields.Bytes();
  return player_.Play(record) ? player_.Find(id) : nullptr;
}

void OwnSurfaces::Drop(uint32_t which) {
  Id id = IdOf(which);
  if (!player_.Find(id)) return;
  Encoder fields;
  Transfer(fields, id);
  Record record;
  record.operation = Operation::Close;
  record.fields = fields.Bytes();
  player_.Play(record);
}

}  // namespace ZIRK::trace
