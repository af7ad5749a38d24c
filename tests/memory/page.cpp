// page FREETYPE FONT
//
// Draws a page of text on FB, and compares the memory that it takes with that of the program
// FREETYPE, which uses FreeType alone; the surfaces' own pixels do not count. The status is 1 if it
// takes more than the library may.

#include <zirk/zirk.h>

#include <cstdio>
#include <memory>
#include <string>

#include "memory/page.h"

namespace {

constexpr long kLimitKiB = 4096;

long FreeTypeKiB(const std::string& program, const std::string& font) {
  std::FILE* const pipe = popen(("'" + program + "' '" + font + "'").c_str(), "r");
  long kibibytes = 0;
  if (!pipe || std::fscanf(pipe, "%ld", &kibibytes) != 1) kibibytes = 0;
  if (pipe) pclose(pipe);
  return kibibytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const long freetype = FreeTypeKiB(argv[1], argv[2]);
  const std::unique_ptr<ZIRK::VuGraphics> graphics(ZIRK::VuGraphics::Create("FB", false));
  if (!graphics || freetype == 0) return 1;
  const std::unique_ptr<ZIRK::VuBitmap> screen(graphics->CreateScreen(800, 480, false));
  const std::unique_ptr<ZIRK::VuFont> font(ZIRK::VuFont::CreateFont(argv[2], 0, kPageTextSize));
  if (!screen || !font) return 1;
  screen->Clear({0xFFFFFFFF});
  for (int line = 0; line < kPageLines; ++line)
    screen->DrawText(*font, PageLine(line).c_str(), {8, 20 * line}, {0xFF000000});
  screen->SwapBuffers();

  const long all = PeakResidentKiB();
  const long surfaces = (graphics->TotalMemory() - graphics->AvailableMemory()) / 1024;
  const long own = all - surfaces - freetype;
  std::printf("a page of text: %ld KiB, surfaces %ld, FreeType alone %ld; left %ld, at most %ld\n",
              all, surfaces, freetype, own, kLimitKiB);
  return own <= kLimitKiB ? 0 : 1;
}
