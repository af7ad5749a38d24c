#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace ZIRK::helpers {

/// A fixture of which every row of a table makes a test of its own.
template <class Row>
using Rows = testing::TestWithParam<Row>;

/// The row's `name`, with underscores for what cannot stand in the name of a test.
inline constexpr auto RowName = [](const auto& info) {
  std::string name = info.param.name;
  for (char& c : name)
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  return name;
};

}  // namespace ZIRK::helpers

/// ROWS(Suite, row...): the table of the suite's TEST_P, whose rows have a field `name`.
#define ROWS(Suite, ...)                                                                           \
  INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(std::vector<Suite::ParamType>{__VA_ARGS__}), \
                           ZIRK::helpers::RowName)
