// Model files read: the front door of the model language.
//
//     language::ReadResult read = language::readModel("pump.itms");
//     for (const text::Diagnostic& error : read.errors) std::cerr << error.format();
//     if (read.model) read.model->activate();
//
// The way of a file: text -> tree (Parser.h), imports -> trees (Imports.h), trees -> types (Types.h), checked (TypeChecks.h),
// types -> parts (Elaboration.h), and their laws, transitions and bindings. All that is wrong is reported in one run; a
// statement with a mistake is left out of the later steps, so that it is not complained about twice. Nothing is half loaded:
// with an error there is no model.
#pragma once

#include "language/meaning/ReadResult.h"

#include <string>

namespace language {

/// Reads the model in a file; one whose name ends with `.json` is read as JSON (ModelJson.h). Its base name is the path without the
/// suffix, so that its implicates are read from the file beside it. Throws nothing but std::bad_alloc. Linear in the size of the
/// text and of the plant.
/// Ensures: there is a model or an error, unless no system is needed and there is none.
ReadResult readModel(const std::string& path, const ReadOptions& options = {});

/// The same for a text under the name `path`, from whose folder imports are read.
ReadResult readModelText(const std::string& path, std::string text, const ReadOptions& options = {});

} // namespace language
