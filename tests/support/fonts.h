#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace ZIRK::support {

/// The path of a sample font.
inline std::string FontFile(const std::string& name) {
  return ZIRK_TEST_FONTS "/" + name;
}

inline std::vector<unsigned char> FontBytes(const std::string& name) {
  std::ifstream file(FontFile(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace ZIRK::support
