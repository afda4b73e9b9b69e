// The model that the command line names, opened for a verb.
#pragma once

#include "app/FileRoles.h"
#include "app/Options.h"
#include "session/Session.h"

namespace app {

/// What the options say about how to search. No history: that is for who explains.
session::Settings settingsOf(const TrackOptions& track);

/// Opens a session over the model, and adds its files to those of the run. Throws Failure when no file is named, its hint naming
/// the verb's help, and FileFailure with all that is wrong in the files, or when one of them would be written. Warnings go
/// to standard error unless `quiet`. Unless `trace`, the engine's trace is kept off standard output from here on.
session::Session openModel(const std::string& verb, const ModelOptions& model, FileRoles& files,
                           bool quiet, const session::Settings& settings = {}, bool trace = false);

/// Adds the files that a model was read from, its implicates among them, be they there or not. Requires: the file at `path` itself
/// was added. Throws FileFailure when one of them would be written.
void addModelFiles(FileRoles& files, const std::string& path, const language::ReadResult& read);

/// Prints warnings to standard error.
void warn(std::vector<text::Diagnostic> warnings);

} // namespace app
