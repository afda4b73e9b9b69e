// The page without its data, as report/page/ makes it; the build puts it into the program (cmake/ItmsPage.cmake).
#pragma once

#include <string_view>

namespace report {

/// Where the data goes.
inline constexpr std::string_view pageDataMark = "@@itms-data@@";

/// The whole page, in which the mark stands once.
std::string_view pageTemplate();

} // namespace report
