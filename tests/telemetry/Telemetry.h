// A plant, telemetry of it as files, and steps as texts.
#pragma once

#include "language/Reader.h"
#include "telemetry/StepReader.h"

#include <string>
#include <vector>

/// Two valves, one in a branch, with thresholds (FT-1 with hysteresis, FT-2 held for 3 s), readings (TS-1, XV-1), and a channel with
/// the names of values (the branch's request, held for 2 s).
extern const std::string plantText;

/// A model that was read from a text without mistakes.
language::ReadResult readPlant(const std::string& text = plantText);

/// Mistakes are reported, and reading goes on.
inline const telemetry::ReadSettings skipping{
    .skipBad = true, .knownNamesOnly = true, .readableOnly = true};
/// Nothing that the model does not know is passed over.
inline const telemetry::ReadSettings strict{.knownNamesOnly = true, .readableOnly = true};

/// A file that is there as long as this.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& text);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// `2 t=1.5 [main.request=open branch/valve.request=none] given [main.request=open] saw [main.flow=zero held] gap 3`.
std::string shown(const telemetry::Step& step);

/// All that a reader returns up to its end: steps as shown, mistakes in full, without the file's name.
std::vector<std::string> readAll(telemetry::StepReader& reader);
/// The same of a text about the plant.
std::vector<std::string> readText(const std::string& text,
                                  const telemetry::ReadSettings& settings = strict);
/// Of the steps only what was observed, `main.flow=zero main.heat=cold`; held ones with ` held`.
std::vector<std::string> observed(const std::string& text);
