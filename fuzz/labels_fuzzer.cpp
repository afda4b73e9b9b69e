// Feeds the reader of labels with any bytes. There are labels or errors, never both; what a label says makes sense, and errors have places
// and can be shown.
#include "assess/Labels.h"
#include "fuzz/FuzzPlant.h"

#include <cmath>
#include <cstdint>
#include <string>

namespace {

std::vector<std::string> linesOf(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += static_cast<char>(data[i]);
        }
    }
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzPlant plant;
    telemetry::LineVector lines(linesOf(data, size), "labels.csv");
    const assess::LabelsRead read = assess::readLabels(lines, plant.session().plant());
    require(read.labels.empty() != read.errors.empty(), "there are labels, or errors");
    for (const assess::Label& label : read.labels) {
        require(std::isfinite(label.start) && label.end > label.start, "a label has a time");
        require(label.isFaultOnly() == (label.what == "fault"), "and names something, or nothing");
        require(label.values.size() <= 1 && label.line >= 2, "once, below the header");
    }
    for (const text::Diagnostic& error : read.errors) {
        require(error.place.line <= size + 1, "a mistake is in a line");
        requireShown(error);
    }
    return 0;
}
