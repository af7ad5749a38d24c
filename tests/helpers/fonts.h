#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace ZIRK::helpers {

inline std::string FontFile(const std::string& name) {
  return ZIRK_TEST_FONTS "/" + name;
}

inline std::vector<unsigned char> FontBytes(const std::string& name) {
  std::ifstream file(FontFile(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A font file with more bitmaps of 48 x 48 pixels than an atlas holds, from U+E000 on. An open
/// font does not need the file.
class Symbols {
 public:
  static constexpr int kCount = 1700, kSize = 48;

  Symbols() {
    std::ofstream out(path_);
    out << "STARTFONT 2.1\nFONT -ZIRK-Symbols-Medium-R-Normal--48-480-72-72-C-480-ISO10646-1\n"
           "SIZE 48 72 72\nFONTBOUNDINGBOX 48 48 0 -8\nSTARTPROPERTIES 4\n"
           "CHARSET_REGISTRY \"ISO10646\"\nCHARSET_ENCODING \"1\"\nFONT_ASCENT 40\n"
           "FONT_DESCENT 8\nENDPROPERTIES\nCHARS "
        << kCount << '\n';
    std::mt19937_64 random;
    for (int i = 0; i < kCount; ++i) {
      out << "STARTCHAR s\nENCODING " << std::dec << 0xE000 + i
          << "\nSWIDTH 1000 0\nDWIDTH 48 0\nBBX 48 48 0 -8\nBITMAP\n"
          << std::hex << std::setfill('0');
      for (int row = 0; row < kSize; ++row) out << std::setw(12) << (random() >> 16) << '\n';
      out << "ENDCHAR\n";
    }
    out << "ENDFONT\n";
  }
  ~Symbols() { std::remove(path_.c_str()); }
  const char* Path() const { return path_.c_str(); }

  static std::string Text(int i) { return {'\xEE', char(0x80 + i / 64), char(0x80 + i % 64)}; }

 private:
  const std::string path_ = testing::TempDir() + "zirk-symbols-" + std::to_string(getpid());
};

}  // namespace ZIRK::helpers
