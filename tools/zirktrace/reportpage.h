#pragma once

#include <string_view>

namespace ZIRK::trace {

/// The page of a report, which the build makes of report.html. The data go where it has kDataMark.
extern const std::string_view kReportPage;
inline constexpr std::string_view kDataMark = "<!--data-->";

}  // namespace ZIRK::trace
