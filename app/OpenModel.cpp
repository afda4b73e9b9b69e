#include "app/OpenModel.h"

#include "app/Output.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace app {

session::Settings settingsOf(const TrackOptions& track)
{
    session::Settings settings;
    settings.maxRank = track.maxRank;
    settings.keep = track.keep;
    settings.lookBack = track.lookBack;
    settings.follow = track.follow;
    settings.limits = {};
    if (track.maxRecords > 0) settings.limits.maxRecords = track.maxRecords;
    if (track.maxSeconds > 0.0) settings.limits.maxSeconds = track.maxSeconds;
    settings.history = 0;
    return settings;
}

session::Session openModel(const std::string& verb, const ModelOptions& model, bool quiet,
                           const session::Settings& settings, bool trace)
{
    if (model.path.empty()) {
        throw Failure(fmt::format("no model is given\n  expected: the name of an .itms file\n"
                                  "  hint: itms {} --help shows an example\n",
                                  verb));
    }
    if (!trace) muteTrace();
    try {
        auto session = session::Session::open(model.path, {model.importFolders, trace}, settings);
        if (!quiet) warn(session.warnings());
        return session;
    } catch (const session::ModelErrors& failure) {
        // Warnings of a model in error are not worth a word; one whose implicates are in error is sound itself.
        if (!quiet && failure.file() != model.path) warn(failure.warnings());
        throw FileFailure(failure.what() +
                          fmt::format("{}: {}\n", failure.file(),
                                      text::counted(failure.errors().size(), "error")));
    }
}

void warn(std::vector<text::Diagnostic> warnings)
{
    for (text::Diagnostic& warning : warnings) {
        warning.message.insert(0, "warning: ");
        complain(warning.format());
    }
}

} // namespace app
