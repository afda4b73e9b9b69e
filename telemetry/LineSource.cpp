#include "telemetry/LineSource.h"

#include <utility>

namespace telemetry {

LineVector::LineVector(std::vector<std::string> lines, std::string name)
    : lines_(std::move(lines)), name_(std::move(name))
{
}

bool LineVector::next(std::string_view& line)
{
    if (done_ == lines_.size()) return false;
    line = lines_[done_++];
    return true;
}

double LineVector::doneShare() const
{
    return lines_.empty() ? 1.0 : static_cast<double>(done_) / static_cast<double>(lines_.size());
}

} // namespace telemetry
