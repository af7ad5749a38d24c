#include "freetypeerror.h"

#include <cstddef>
#include <iterator>

namespace ZIRK {

namespace {

struct Entry {
  int code;
  const char* message;
};

// FreeType's header generates the table from these macros.
#undef FTERRORS_H_
#define FT_ERRORDEF(error, value, text) {value, text},
#define FT_ERROR_START_LIST {
#define FT_ERROR_END_LIST \
  { 0, "(null)" }         \
  }
constexpr Entry kErrors[] =
#include FT_ERRORS_H
    ;

}  // namespace

FreeTypeError::FreeTypeError(FT_Error error) : code(error) {
  if (error < 0 || static_cast<size_t>(error) >= std::size(kErrors)) return;
  code = kErrors[error].code;
  message = kErrors[error].message;
}

}  // namespace ZIRK
