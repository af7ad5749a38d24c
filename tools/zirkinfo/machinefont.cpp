#include "machinefont.h"

#include <zirk/vufont.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <vector>

namespace ZIRK::zirkinfo {

namespace {

namespace fs = std::filesystem;

constexpr const char* kFolders[] = {"/usr/share/fonts", "/usr/local/share/fonts"};
constexpr const char* kPreferred[] = {"DejaVuSans.ttf", "LiberationSans-Regular.ttf",
                                      "NotoSans-Regular.ttf", "FreeSans.ttf", "Roboto-Regular.ttf"};

bool IsOutlineFont(const fs::path& path) {
  return path.extension() == ".ttf" || path.extension() == ".otf";
}

void CollectFonts(const char* folder, std::vector<fs::path>& fonts) {
  std::error_code error;
  constexpr auto kOptions = fs::directory_options::skip_permission_denied;
  fs::recursive_directory_iterator file(folder, kOptions, error);
  for (; !error && file != fs::recursive_directory_iterator(); file.increment(error))
    if (IsOutlineFont(file->path())) fonts.push_back(file->path());
}

bool IsFont(const std::string& file) {
  return VuFont(file.c_str(), 0, 16).GetOneLineHeight() != 0;
}

}  // namespace

std::string FindMachineFont() {
  std::vector<fs::path> fonts;
  for (const char* const folder : kFolders) CollectFonts(folder, fonts);
  if (fonts.empty()) return "";
  std::sort(fonts.begin(), fonts.end());
  for (const char* const name : kPreferred) {
    const auto found = std::find_if(fonts.begin(), fonts.end(), [name](const fs::path& font) {
      return font.filename() == name;
    });
    if (found != fonts.end()) return *found;
  }
  return fonts.front();
}

std::optional<std::string> ChooseFont(const CommandLine& line) {
  if (!line.hasText) return "";
  if (!line.fontFile.empty()) {
    if (IsFont(line.fontFile)) return line.fontFile;
    std::fprintf(stderr, "zirkinfo: %s: cannot be opened as a font\n", line.fontFile.c_str());
    return std::nullopt;
  }
  const std::string found = FindMachineFont();
  if (found.empty() || !IsFont(found)) {
    std::fputs("zirkinfo: no font found, so no text is drawn; name one with --font\n", stderr);
    return "";
  }
  return found;
}

}  // namespace ZIRK::zirkinfo
