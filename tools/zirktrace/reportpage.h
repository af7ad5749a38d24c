#pragma once

#include <string_view>

namespace ZIRK::trace {

/// The page of a report, which the build makes from report.html. The data replace kDataMark.
extern const std::string_view kReportPage;
inline constexpr std::string_view kDataMark = "<!--data-->";

}  // namespace ZIRK::trace
