// Feeds the reader of the file beside a model with any bytes. It is read, or refused with mistakes that have a line and can be shown;
// what is read can be followed, has settings that the command line could have given as well, and is read as the same once more.
#include "app/Output.h"
#include "app/PlantFile.h"
#include "fuzz/FuzzPlant.h"
#include "fuzz/MemoryFile.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace {

void requireReadable(const std::string& message)
{
    require(!message.empty() && message.back() == '\n', "a mistake is told in whole lines");
    for (std::string_view rest = message; !rest.empty();) {
        const std::size_t length = text::utf8Length(rest);
        require(length > 0, "a mistake is shown as UTF-8");
        rest.remove_prefix(length);
    }
}

void checkSettings(const telemetry::ReadSettings& settings)
{
    require(std::isfinite(settings.gapSteps) && settings.gapSteps >= 1, "a gap has a length");
    require(settings.decimal == '.' || settings.decimal == ',', "numbers have a decimal sign");
    require(settings.separator != settings.decimal, "which does not separate cells");
}

std::optional<app::Reading> readingOf(const std::string& path, const session::Session& session,
                                      bool asNames)
{
    app::ReadOptions options;
    (asNames ? options.rename : options.plantFile) = path;
    if (asNames) options.plantFile = "none";
    try {
        app::FileRoles roles;
        const app::PlantFiles files("plant.itms", options, roles);
        return files.reading(session.model(), session.bindings());
    } catch (const app::FileFailure& failure) {
        requireReadable(failure.what());
        require(std::string_view(failure.what()).find(path + ":") == 0, "a mistake has a place");
    } catch (const app::Failure& failure) { // settings that do not go together
        requireReadable(failure.what());
    }
    return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzPlant plant;
    const MemoryFile text(data, size);
    for (const bool asNames : {false, true}) {
        const auto first = readingOf(text.path, plant.session(), asNames);
        if (!first) continue;
        checkSettings(first->settings);
        const auto again = readingOf(text.path, plant.session(), asNames);
        require(again && again->texts == first->texts, "it is read as the same again");
    }
    return 0;
}
