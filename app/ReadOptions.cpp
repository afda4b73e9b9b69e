#include "app/ReadOptions.h"

#include "app/Output.h"
#include "telemetry/TimeFormat.h"

#include <fmt/format.h>
#include <limits>

namespace app {

namespace {

std::string checkTimeFormat(const std::string& text)
{
    const auto mistake = telemetry::TimeFormat::mistakeIn(text);
    if (!mistake) return {};
    return fmt::format("found {}; expected {}", mistake->message, mistake->expected);
}

} // namespace

Section readSection(ReadOptions& options)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return {
        "How the telemetry is written",
        {{"--unknown-columns", "ignore|error",
          "columns and names that the model does not know (default\n{default})",
          &options.unknownColumns, oneOf({"ignore", "error"})},
         {"--bad-readings", "missing|error",
          "what is no number where one is wanted: not observed, or\nan error (default {default})",
          &options.badReadings, oneOf({"missing", "error"})},
         {"--time-column",
          "NAME",
          "where the time is (default: t, or the only column called\ntime, timestamp or datetime)",
          &options.timeColumn,
          {}},
         {"--time-format", "FORMAT",
          "seconds, milliseconds, iso8601, or a pattern such as\n'%m/%d/%Y %H:%M:%S' (default: "
          "seconds or iso8601, as the\nfirst time is)",
          &options.timeFormat, checkTimeFormat},
         {"--separator", "SIGN", "between cells: , or ; or tab (default: as in the header)",
          &options.separator, oneOf({",", ";", "tab"})},
         {"--decimal", "SIGN", "in numbers of a table: . or , (default {default})",
          &options.decimal, oneOf({".", ","})},
         {"--gap", "N", "a gap is more than N step lengths without a step\n(default {default})",
          &options.gap, number(1.0, infinity)}}};
}

telemetry::ReadSettings readSettings(const ReadOptions& options)
{
    if (options.decimal == "," && options.separator == ",") {
        throw Failure("the comma is the decimal sign and the separator\n"
                      "  expected: --separator ';' or --separator tab with --decimal ,\n");
    }
    telemetry::ReadSettings settings;
    settings.knownNamesOnly = options.unknownColumns == "error";
    settings.readableOnly = options.badReadings == "error";
    settings.timeColumn = options.timeColumn;
    settings.timeFormat = options.timeFormat;
    if (!options.separator.empty())
        settings.separator = options.separator == "tab" ? '\t' : options.separator.front();
    settings.decimal = options.decimal.front();
    settings.gapSteps = options.gap;
    return settings;
}

std::map<std::string, std::string> textsOf(const ReadOptions& options)
{
    return {{"unknown-columns", options.unknownColumns},
            {"bad-readings", options.badReadings},
            {"time-column", options.timeColumn},
            {"time-format", options.timeFormat},
            {"separator", options.separator},
            {"decimal", options.decimal},
            {"gap", fmt::format("{}", options.gap)}};
}

} // namespace app
