#include "report/Numbers.h"

#include <cstdlib>
#include <fmt/format.h>

namespace report {

double sixDigits(double value)
{
    return std::strtod(fmt::format("{:.6g}", value).c_str(), nullptr);
}

} // namespace report
