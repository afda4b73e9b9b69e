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
          "columns and names that the model does not know (default\nignore)",
          &options.unknownColumns, oneOf({"ignore", "error"})},
         {"--bad-readings", "missing|error",
          "what is no number where one is wanted: not observed, or\nan error (default missing)",
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
         {"--decimal", "SIGN", "in numbers of a table: . or , (default .)", &options.decimal,
          oneOf({".", ","})},
         {"--gap", "N", "a gap is more than N step lengths without a step\n(default 3)",
          &options.gap, number(1.0, infinity)},
         {"--rename",
          "FILE",
          "what columns and keys are called in the model: a TOML file of\n\"COLUMN\" = \"CHANNEL\"",
          &options.rename,
          {}},
         {"--plant-file",
          "FILE",
          "says all of this as well; the command line takes precedence\n(default: plant.toml "
          "beside the model; none: no file)",
          &options.plantFile,
          {}}}};
}

Reading readingOf(const ReadOptions& options)
{
    Reading reading;
    telemetry::ReadSettings& settings = reading.settings;
    const auto said = [&](const char* name, const std::optional<std::string>& value,
                          const char* usual) { return reading.texts[name] = value.value_or(usual); };
    settings.knownNamesOnly = said("unknown-columns", options.unknownColumns, "ignore") == "error";
    settings.readableOnly = said("bad-readings", options.badReadings, "missing") == "error";
    settings.timeColumn = said("time-column", options.timeColumn, "");
    settings.timeFormat = said("time-format", options.timeFormat, "");
    const std::string separator = said("separator", options.separator, "");
    const std::string decimal = said("decimal", options.decimal, ".");
    if (decimal == "," && separator == ",") {
        throw Failure("the comma is the decimal sign and the separator\n"
                      "  expected: --separator ';' or --separator tab with --decimal ,\n");
    }
    if (!separator.empty()) settings.separator = separator == "tab" ? '\t' : separator.front();
    settings.decimal = decimal.front();
    settings.gapSteps = *parsedNumber<double>(said("gap", options.gap, "3"));
    return reading;
}

} // namespace app
