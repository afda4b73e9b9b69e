#include "app/TrackRun.h"

#include "app/Interruption.h"
#include "app/Output.h"
#include "app/PlantFile.h"
#include "report/Alike.h"
#include "report/WallClock.h"
#include "text/Wording.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

namespace app {

namespace {

std::vector<std::string> telemetryOf(const std::string& verb, const TrackOptions& options)
{
    if (options.telemetry.empty()) {
        throw Failure(fmt::format("no telemetry is given\n"
                                  "  expected: the name of a file, or - for standard input\n"
                                  "  hint: itms {} --help shows an example\n",
                                  verb));
    }
    std::vector<std::string> files{options.telemetry};
    files.insert(files.end(), options.moreTelemetry.begin(), options.moreTelemetry.end());
    // Each is opened twice: first for its first time.
    const auto once = std::find_if(files.begin(), files.end(), [](const std::string& file) {
        std::error_code error;
        return file == "-" || (std::filesystem::exists(file, error) &&
                               !std::filesystem::is_regular_file(file, error));
    });
    if (files.size() > 1 && once != files.end()) {
        throw Failure(
            fmt::format("{} is one of several files of telemetry, and can be read only once\n"
                        "  expected: names of files, or one input alone\n",
                        *once == "-" ? "standard input" : text::quoted(*once)));
    }
    return files;
}

Reading readingOf(const TrackOptions& options, FileRoles& files, const session::Session& session)
{
    const PlantFiles plantFiles(options.model.path, options.reading, files);
    Reading reading = plantFiles.reading(session.model(), session.bindings());
    reading.settings.skipBad = options.skipBad;
    reading.settings.mayGrow = options.mayGrow;
    return reading;
}

session::Session open(const std::string& verb, const TrackOptions& options,
                      const session::Settings& settings, FileRoles& files, bool trace)
{
    if (!options.telemetry.empty()) files.reads(options.telemetry, "the telemetry");
    for (const std::string& more : options.moreTelemetry) {
        files.reads(more, "the telemetry");
    }
    return openModel(verb, options.model, files, options.quiet, settings, trace);
}

} // namespace

FileRoles TrackRun::printing()
{
    FileRoles files;
    files.writesStandardOutput();
    return files;
}

TrackRun::TrackRun(const std::string& verb, const TrackOptions& options,
                   const session::Settings& settings, FileRoles files, bool trace)
    : session_(open(verb, options, settings, files, trace)),
      reading_(readingOf(options, files, session_)),
      feed_(telemetryOf(verb, options), session_.model(), session_.bindings(), reading_.settings,
            !options.quiet)
{
}

bool TrackRun::next()
{
    std::optional<Whole> before;
    if (keepsWhole_) before = now();
    auto step = feed_.next();
    if (!step) return false;
    step_ = std::move(*step);
    session_.advance(step_);
    if (!before || answer().limit != SearchLimit::stopped) return true;
    session_.tracker().restore(before->memory);
    session_.readingChanges() = before->changes;
    putBack_ = std::move(before);
    return false;
}

TrackRun::Whole TrackRun::now() const
{
    return {feed_.reader().state(), feed_.linesLeftOut() - feed_.reader().mistakesAhead(),
            session_.tracker().memory(), session_.readingChanges()};
}

telemetry::ReaderState TrackRun::readerState() const
{
    return putBack_ ? putBack_->reader : feed_.reader().state();
}

std::size_t TrackRun::linesLeftOut() const
{
    return putBack_ ? putBack_->leftOut : feed_.linesLeftOut() - feed_.reader().mistakesAhead();
}

void TrackRun::takeUntil(std::optional<std::uint64_t> wanted, const OnTheWay& onTheWay)
{
    std::size_t taken = 0;
    while (!wanted || taken < *wanted) {
        if (wanted && taken + 1 == *wanted && onTheWay.beforeLast) onTheWay.beforeLast();
        if (!next()) break;
        taken = step_.number;
        if (onTheWay.after) onTheWay.after();
    }
    if (interruption() || (taken > 0 && (!wanted || taken == *wanted))) return;
    if (taken == 0) {
        throw Failure(fmt::format("the telemetry has no steps\n  expected: {}\n", onTheWay.wanted));
    }
    throw Failure(fmt::format("there is no step {}: the telemetry has {}\n"
                              "  expected: --step 1 to --step {}\n",
                              *wanted, text::counted(taken, "step"), taken));
}

ExitStatus TrackRun::status() const
{
    const bool explained =
        answer().complete && answer().status != monitor::TrackStatus::inconsistent;
    return explained ? ExitStatus::done : ExitStatus::unexplained;
}

std::optional<std::string> timeOf(const telemetry::Step& step)
{
    return step.wallClock ? report::wallClock(step.t) : std::nullopt;
}

report::StepReport reportOf(const TrackRun& track)
{
    report::StepReport report = report::stepReport(track.session().plant(), track.answer());
    report.gap = track.step().gap;
    report.time = timeOf(track.step());
    for (const telemetry::Observation& observation : track.step().observations) {
        if (observation.held) report.held.push_back(observation.value->id);
    }
    return report;
}

report::StepReport reportForPeople(const TrackRun& track)
{
    report::StepReport report = reportOf(track);
    std::vector<plant::VariableIndex> read;
    for (const auto& [variable, count] : track.session().readingChanges().counts()) {
        read.push_back(variable);
    }
    report::noteAppearance(report, track.session().plant(), track.answer(), read);
    return report;
}

} // namespace app
