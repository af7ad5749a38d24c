#pragma once

#include "fields.h"
#include "tracefile.h"

namespace ZIRK::trace {

/// Calls `use(static_cast<W*>(nullptr), value)` for each field of a record, in order. W is the
/// field's type in the row, or Id for the operation's object.
template <class Use>
void VisitFields(const Record& record, const Use& use) {
  Decoder decoder(record.fields);
  const auto read = [&]<class W>(W* type) {
    Value<W> value{};
    Transfer(decoder, value);
    use(type, value);
  };
  if (HasObject(record.operation)) read(static_cast<Id*>(nullptr));
  WithFields(record.operation, [&]<class Result, class... W>() {
    (read(static_cast<W*>(nullptr)), ...);
    read(static_cast<Result*>(nullptr));
  });
}

}  // namespace ZIRK::trace
