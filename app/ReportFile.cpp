#include "app/ReportFile.h"

#include "app/Interruption.h"
#include "app/Output.h"
#include "text/File.h"

#include <filesystem>

namespace app {

ReportFile::ReportFile(std::string path, const TrackOptions& options, const TrackRun& track,
                       const report::Shown& shown)
    : path_(std::move(path)), track_(track),
      writer_([this](std::string_view piece) { text_ += piece; },
              {options.model.path, options.telemetry, false, 0}, track.session().plant(),
              track.session().read(), shown)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path_, error);
    const bool isOther =
        std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (path_ == "-" || isOther) return; // a pipe or a device is written into
    try {
        text::checkPlace(path_);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(std::string(failure.what()) + "\n");
    }
}

void ReportFile::step(const report::StepReport& report)
{
    writer_.step({report, track_.step(), track_.session().input(), track_.answer()});
}

void ReportFile::write()
{
    if (interruption()) writer_.interrupt();
    writer_.end(track_.feed().linesLeftOut());
    if (path_ == "-") {
        print(text_);
        return;
    }
    try {
        text::writeFile(path_, text_);
    } catch (const text::WriteFailure& failure) {
        throw FileFailure(std::string(failure.what()) + "\n");
    }
}

} // namespace app
