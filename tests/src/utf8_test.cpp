#include <gtest/gtest.h>
#include <zirk/utf8.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>

#include "helpers/logged.h"

namespace ZIRK {
namespace {

/// What a string must decode to: value and length.
std::pair<unsigned, int> Expected(const std::string& s) {
  const unsigned first = s.empty() ? 0 : uint8_t(s[0]);
  if (first < 0x80) return {first, 1};
  if (first < 0xC0 || first > 0xF7) return {0, 0};
  const size_t wanted = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  unsigned value = first % (1u << (7 - wanted));
  size_t n = 1;
  for (; n < wanted && n < s.size(); ++n)
    if (uint8_t(s[n]) / 64 == 2) value = value * 64 + uint8_t(s[n]) % 64;
  return {value, int(n)};
}

/// Decodes from memory that ends with the terminating zero.
std::pair<unsigned, int> Decoded(const std::string& s) {
  const auto exact = std::make_unique<char[]>(s.size() + 1);
  std::memcpy(exact.get(), s.c_str(), s.size() + 1);
  int length = -1;
  const unsigned value = GetUtf8Char(exact.get(), &length);
  return {value, length};
}

TEST(Utf8, EveryKindOfSequence) {
  // The first and the last byte of each kind; a zero cuts the sequence off.
  const std::string kinds("\0\x01\x7F\x80\xBF\xC0\xDF\xE0\xEF\xF0\xF7\xF8\xFF", 13);
  for (const char first : kinds)
    for (const char second : kinds)
      for (const char third : kinds)
        for (const char fourth : kinds) {
          const char bytes[] = {first, second, third, fourth, 0};
          ASSERT_EQ(Decoded(bytes), Expected(bytes)) << testing::PrintToString(bytes);
        }
}

TEST(Utf8, WhatIsWrongIsLogged) {
  const std::tuple<const char*, unsigned, int, const char*> cases[] = {
      {nullptr, 0, 0, ""},
      {"\xF0\x9F\x98\x80", 0x1F600, 4, ""},
      {"\xF8", 0, 0, "<ZIRK.info>: invalid header byte: 0xf8\n"},
      {"\xE2\xFF\xAC-", 0xAC, 3, "<ZIRK.info>: invalid successor byte: 0xff\n"},
      {"\xE2\x82", 0x82, 2, "<ZIRK.info>: invalid successor byte: 0x0\n"},
  };
  for (const auto& [text, value, length, logged] : cases) {
    int n = -1;
    const auto decode = [&, s = text, v = value] { EXPECT_EQ(GetUtf8Char(s, &n), v); };
    EXPECT_EQ(helpers::LoggedAt(6, decode), logged);
    EXPECT_EQ(n, length);
    EXPECT_EQ(helpers::LoggedAt(5, decode), "");
  }
}

}  // namespace
}  // namespace ZIRK
