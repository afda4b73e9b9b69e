// A model file as the verbs open it: read, checked, active, with an engine set up over it.
#pragma once

#include "language/Reader.h"
#include "plant/ActiveModel.h"
#include "plant/Plant.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace app {

/// What the command line says about the model.
struct ModelOptions {
    std::string path;
    std::vector<std::string> importFolders;
};

/// Enters the positional argument `model` and the option `-I, --import` that every verb over a model has.
void addModelOptions(CLI::App& verb, ModelOptions& options);

/// Holds the model of a file as the active one, so there can be only one at a time. What is built over it goes first.
class ModelFile {
public:
    /// Throws Failure when no file is named, its hint naming the verb's help, and FileFailure with all that is
    /// wrong in the files. Warnings go to standard error unless `quiet`. Mutes the engine's trace before the set-up
    /// unless `trace`. Reads the implicates beside the model, in which errors are errors, too. Linear in the model.
    ModelFile(const std::string& verb, const ModelOptions& options, bool quiet, bool trace = false);

    /// As it was named.
    const std::string& path() const { return path_; }
    /// Everything that was read; the model is there, and there are no errors.
    const language::ReadResult& read() const { return read_; }
    const plant::Bindings& bindings() const { return read_.bindings; }
    const plant::Plant& plant() const { return plant_; }
    itms& engine() { return active_.engine(); }

private:
    // In the order in which they have to happen: the active model is set up, and then gets its numbers.
    std::string path_;
    language::ReadResult read_;
    plant::ActiveModel active_;
    plant::Plant plant_;
};

} // namespace app
