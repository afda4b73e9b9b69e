#include "app/Options.h"

#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

constexpr std::uint64_t mostKept = 100000;
constexpr std::uint64_t mostMillions = std::uint64_t{1} << 40U;

ColourChoice colourChoice(const AnswerOptions& answer)
{
    if (answer.colour == "always") return ColourChoice::always;
    if (answer.colour == "never" || answer.output) return ColourChoice::never;
    return ColourChoice::automatic;
}

report::Format formatOf(const AnswerOptions& answer)
{
    const std::string format =
        answer.format.value_or(!answer.output && outputIsTerminal() ? "table" : "jsonl");
    if (format == "json") return report::Format::array;
    return format == "jsonl" ? report::Format::lines : report::Format::people;
}

} // namespace

Row modelRow(std::string& path, const std::string& help)
{
    return {"MODEL", "", help, &path, {}, 1};
}

Row importRow(std::vector<std::string>& folders, const std::string& help)
{
    return {"-I,--import", "FOLDER", help, &folders, {}};
}

Row importsAnywhereRow(bool& anywhere)
{
    return {"--allow-imports-anywhere",
            "",
            "the model may import files that lie elsewhere than\nbelow its folder and those of -I",
            &anywhere,
            {}};
}

Row skipBadRow(bool& skipBad)
{
    return {"--skip-bad", "", "report lines that are in error, and go on", &skipBad, {}};
}

Row quietRow(bool& quiet, const std::string& kept)
{
    return {"-q,--quiet", "", kept + " on standard error", &quiet, {}};
}

Row stepRow(std::optional<std::uint64_t>& step, const std::string& help)
{
    return {"--step", "N", help, &step, wholeNumber(1, mostSteps)};
}

Row shownRow(std::uint64_t& shown, const std::string& help)
{
    return {"-n", "N",
            help + " (default {default}; 0:\x1f"
                   "all)",
            &shown, wholeNumber(0, std::numeric_limits<std::uint32_t>::max())};
}

Row massRow(double& mass)
{
    return {"--mass", "P",
            "... but no more than have P of the probability together (default {default})", &mass,
            number(0.0, 1.0)};
}

Row formatRow(AnswerOptions& answer, const std::vector<std::string>& words, const std::string& help)
{
    return {"--format", fmt::format("{}", fmt::join(words, "|")), help, &answer.format,
            oneOf(words)};
}

Row colourRow(AnswerOptions& answer, const std::string& where)
{
    return {"--color", "always|never|auto",
            fmt::format("colours in the {} (default {{default}}: as NO_COLOR, CLICOLOR_FORCE, "
                        "CLICOLOR say, else on a terminal)",
                        where),
            &answer.colour, oneOf({"always", "never", "auto"})};
}

Row maxSecondsRow(double& seconds, const std::string& help)
{
    return {"--max-seconds", "S", help + " after so many seconds (default {default}: no limit)",
            &seconds, number(0.0, std::numeric_limits<double>::infinity())};
}

Row maxWorkRow(std::uint64_t& millions, const std::string& help)
{
    return {"--max-work", "N",
            help + " after looking at N million literals of laws, or what\ncosts as much (default "
                   "{default}; 0: no limit)",
            &millions, wholeNumber(0, mostMillions)};
}

Row maxMemoryRow(std::uint64_t& mebibytes)
{
    return {"--max-memory", "MIB",
            "... with so many MiB of memory in use (default {default};\n0: no limit)", &mebibytes,
            wholeNumber(0, mostMillions)};
}

monitor::WorkLimits workLimits(std::uint64_t maxWork, std::uint64_t maxMemory)
{
    monitor::WorkLimits limits;
    if (maxWork > 0) limits.maxWork = maxWork * 1'000'000;
    if (maxMemory > 0) limits.maxBytes = maxMemory << 20U;
    return limits;
}

Row failOnRow(std::optional<std::string>& failOn, const std::string& help)
{
    return {"--fail-on", "fault", "end with status 1 when " + help, &failOn, oneOf({"fault"})};
}

std::vector<Row> telemetryRows(TrackOptions& track)
{
    return {modelRow(track.model.path, "a model file, .itms, or one that itms export wrote"),
            {"TELEMETRY",
             "",
             "commands and observations: JSON Lines or CSV, or either\nof them packed by gzip or "
             "zstd; - for standard input",
             &track.telemetry,
             {},
             2},
            importRow(track.model.importFolders, "look for imported model files there, too"),
            importsAnywhereRow(track.model.importsAnywhere),
            skipBadRow(track.skipBad)};
}

std::vector<Row> trackRows(TrackOptions& track)
{
    std::vector<Row> rows = telemetryRows(track);
    const Row more{"MORE",
                   "",
                   "further files of telemetry: they are taken in the order of\ntheir first times",
                   &track.moreTelemetry,
                   {},
                   3};
    rows.insert(rows.begin() + 2, more);
    return rows;
}

Section searchSection(TrackOptions& track)
{
    return {
        "How to search",
        {{"--max-rank", "N",
          "up to N faults at once, those of the look-back included (default {default})",
          &track.maxRank, wholeNumber(0, mostFaults)},
         {"--keep", "N", "keep the N most probable hypotheses (default {default})", &track.keep,
          wholeNumber(1, mostKept)},
         {"--look-back", "N", "go back up to N steps for faults that show late (default {default})",
          &track.lookBack, wholeNumber(0, mostKept)},
         {"--follow", "P",
          "follow whatever is at least so probable, though nothing\ncontradicts what is expected "
          "(default {default}; 0: everything)",
          &track.follow, number(0.0, 1.0)},
         {"--max-records", "N",
          "stop searching a step after so many records\n(default {default}; 0: no limit)",
          &track.maxRecords, wholeNumber(0)},
         maxSecondsRow(track.maxSeconds, "..."),
         maxWorkRow(track.maxWork, "..."),
         maxMemoryRow(track.maxMemory)}};
}

report::Writers writersOf(const AnswerOptions& answer, report::Sink sink)
{
    return {formatOf(answer), report::Colours(wantsColour(colourChoice(answer))), std::move(sink)};
}

} // namespace app
