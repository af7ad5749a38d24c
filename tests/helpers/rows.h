#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace ZIRK::helpers {

/// A fixture for a table, every row of which is a test of its own.
template <class Row>
using Rows = testing::TestWithParam<Row>;

/// The text with underscores for what cannot stand in the name of a test.
inline std::string ToName(std::string text) {
  for (char& c : text)
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  return text;
}
inline constexpr auto RowName = [](const auto& info) { return ToName(info.param.name); };

}  // namespace ZIRK::helpers

/// ROWS(Suite, row...): the table of the suite's TEST_P, whose rows have a field `name`.
#define ROWS(Suite, ...)                                                                           \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(std::vector<Suite::ParamType>{__VA_ARGS__}), \
                           ZIRK::helpers::RowName)
