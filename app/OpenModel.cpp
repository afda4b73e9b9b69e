#include "app/OpenModel.h"

#include "app/Interruption.h"
#include "app/Output.h"
#include "language/json/ModelJson.h"
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
    settings.limits.stop = &interruption();
    settings.work = workLimits(track.maxWork, track.maxMemory);
    settings.history = 0;
    return settings;
}

session::Session openModel(const std::string& verb, const ModelOptions& model, FileRoles& files,
                           bool quiet, const session::Settings& settings, bool trace)
{
    if (model.path.empty()) {
        throw Failure(fmt::format("no model is given\n  expected: the name of an .itms file\n"
                                  "  hint: itms {} --help shows an example\n",
                                  verb));
    }
    files.reads(model.path, "the model");
    if (!trace) muteTrace();
    try {
        auto session = session::Session::open(
            model.path, {model.importFolders, model.importsAnywhere, trace}, settings);
        addModelFiles(files, model.path, session.read());
        if (!quiet) warn(session.warnings());
        return session;
    } catch (const session::ModelErrors& failure) {
        // Warnings of a model in error are not worth a word; one whose implicates are in error is sound itself.
        if (!quiet && failure.file() != model.path) warn(failure.warnings());
        throw FileFailure(failure.what() +
                          fmt::format("{}: {}\n", text::shownName(failure.file()),
                                      text::counted(failure.errors().size(), "error")));
    }
}

void addModelFiles(FileRoles& files, const std::string& path, const language::ReadResult& read)
{
    if (read.model) files.reads(read.model->name() + ".pi", "the implicates of the model");
    // A model that was read as data names what it was made from.
    const bool imports = !language::isJsonPath(path);
    for (const std::string& file : read.files) {
        if (file != path)
            files.reads(file,
                        imports ? "a file that the model imports" : "a file that the model names");
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
