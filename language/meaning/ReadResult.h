// What reading a model takes, and what comes of it, whatever it was written in.
#pragma once

#include "language/meaning/Elaboration.h"
#include "plant/Bindings.h"
#include "plant/Model.h"
#include "text/Diagnostic.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace language {

struct ReadOptions {
    std::vector<std::string>
        searchPath; ///< folders where imports are looked for, after the importing file's own
    /// Whether imports, and the implicates of a JSON model, may lie anywhere. Otherwise below the model's folder or one of these.
    bool importsAnywhere = false;
    syntax::Limits syntax;
    ExpansionLimits expansion;
    std::size_t mostErrors = 100; ///< that are reported of one model
    bool systemNeeded = true;     ///< false: a file of components alone is fine; it has no model
};

/// How much a model is.
struct ModelSize {
    std::size_t components = 0;
    std::size_t variables = 0;
    std::size_t atoms = 0;
    std::size_t laws = 0; ///< statements, each counted once for every instance and turn of a loop
    std::size_t clauses = 0; ///< those of the laws and those of the variables
    std::size_t transitions = 0;
    std::size_t componentTypes = 0; ///< declared in the model's files
};

/// Where a law of the model was written.
struct LawPlace {
    std::uint32_t file = 0; ///< index in ReadResult::files
    std::uint32_t line = 0; ///< 0: nowhere, a program made it
    std::uint32_t column = 0;
    std::uint32_t text = 0; ///< index in ReadResult::lawTexts, if the text is known
};

struct ReadResult {
    std::unique_ptr<plant::Model> model; ///< null when there are errors, or nothing but components
    std::string system; ///< its name, which the system's own variables have for that of a component
    plant::Bindings bindings; ///< of the model
    std::vector<text::Diagnostic> errors;
    std::vector<text::Diagnostic> warnings;
    ModelSize size;
    /// That were read, the main one first; of a JSON model those that it names as its own sources.
    std::vector<std::string> files;
    std::vector<LawPlace> lawPlaces; ///< of each of the model's laws(), in their order
    /// The statements of the laws as they were written, in one line, each once: instances and turns of a loop share it. Empty
    /// for a model that was read as data.
    std::vector<std::string> lawTexts;
};

} // namespace language
