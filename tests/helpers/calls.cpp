#include "helpers/calls.h"

#include <dlfcn.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>
#include <zirk/export.h>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace ZIRK::helpers {

Calls calls;

namespace {

/// The function that `own` replaces.
template <typename F>
F* Next(const char* name, F* /*own*/) {
  return reinterpret_cast<F*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

}  // namespace ZIRK::helpers

using ZIRK::helpers::calls;
using ZIRK::helpers::Next;

extern "C" {

ZIRK_API int clock_gettime(clockid_t clock, timespec* now) noexcept {
  static std::chrono::nanoseconds ahead{};
  // Not by Next(): dlsym() frees what dlerror() returned, which may be about to be logged.
  static_assert(sizeof now->tv_sec == sizeof(long), "the kernel's older call");
  const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, now));
  if (clock != CLOCK_MONOTONIC) return result;
  const auto real = std::chrono::seconds(now->tv_sec) + std::chrono::nanoseconds(now->tv_nsec);
  if (calls.stoppedAt.count() != 0) ahead = calls.stoppedAt - real;
  now->tv_sec = static_cast<time_t>((real + ahead).count() / 1'000'000'000);
  now->tv_nsec = static_cast<long>((real + ahead).count() % 1'000'000'000);
  return result;
}

ZIRK_API FT_Error FT_New_Face(FT_Library library, const char* path, FT_Long index, FT_Face* face) {
  calls.faces.emplace_back(path);
  return Next("FT_New_Face", &FT_New_Face)(library, path, index, face);
}

ZIRK_API FT_Error FT_Load_Glyph(FT_Face face, FT_UInt index, FT_Int32 flags) {
  calls.loads.push_back(flags);
  if (calls.glyphsToRefuse > 0) return --calls.glyphsToRefuse, FT_Err_Out_Of_Memory;
  return Next("FT_Load_Glyph", &FT_Load_Glyph)(face, index, flags);
}
}
