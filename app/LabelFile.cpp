#include "app/LabelFile.h"

#include "app/Output.h"
#include "telemetry/LineReader.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

std::vector<assess::Label> readLabelFile(const std::string& path, const TrackRun& track)
{
    constexpr std::size_t longestLine = std::size_t{1} << 20U;
    telemetry::LineReader lines(path, longestLine);
    assess::LabelsRead read =
        assess::readLabels(lines, track.session().plant(), track.reading().settings.timeFormat);
    if (read.errors.empty()) return std::move(read.labels);
    std::string message;
    for (const text::Diagnostic& error : read.errors) {
        message += error.format();
    }
    throw FileFailure(message + fmt::format("{}: {}\n", text::shownName(path),
                                            text::counted(read.errors.size(), "error")));
}

void tellEmptyLabels(const std::string& path, const std::vector<std::size_t>& lines)
{
    for (const std::size_t line : lines) {
        complain(fmt::format("{}:{}: no step lies in the time of this label\n",
                             text::shownName(path), line));
    }
}

} // namespace app
