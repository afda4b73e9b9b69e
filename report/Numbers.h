// Numbers as they stand in records.
#pragma once

namespace report {

/// The number that its six significant digits say: probabilities have no more that could be relied on.
double sixDigits(double value);

} // namespace report
