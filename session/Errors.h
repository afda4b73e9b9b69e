// What keeps a session from being opened, asked or resumed.
#pragma once

#include "text/Diagnostic.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace session {

/// Diagnostics as an exception; what() is all of them as they are printed.
class Errors : public std::runtime_error {
public:
    explicit Errors(std::vector<text::Diagnostic> errors);

    const std::vector<text::Diagnostic>& errors() const { return errors_; }

private:
    std::vector<text::Diagnostic> errors_;
};

/// The files of a model are in error.
class ModelErrors : public Errors {
public:
    ModelErrors(std::string file, std::vector<text::Diagnostic> errors,
                std::vector<text::Diagnostic> warnings);

    /// The model's file, or that of its implicates.
    const std::string& file() const { return file_; }
    /// What was found before.
    const std::vector<text::Diagnostic>& warnings() const { return warnings_; }

private:
    std::string file_;
    std::vector<text::Diagnostic> warnings_;
};

/// A formula is in error.
class FormulaErrors : public Errors {
public:
    using Errors::Errors;
};

/// A checkpoint that a session cannot go on from. what() is one sentence without its end.
class CheckpointError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// It was made with another model.
class OtherModel : public CheckpointError {
public:
    explicit OtherModel(bool onlyProbabilities);

    /// The models differ in probabilities and rates only: a session may adopt the checkpoint.
    bool onlyProbabilities() const { return onlyProbabilities_; }

private:
    bool onlyProbabilities_;
};

/// It was made with another setting.
class OtherSetting : public CheckpointError {
public:
    OtherSetting(std::string name, std::string then, std::string now);

    const std::string& name() const { return name_; } ///< "max-rank"
    const std::string& then() const { return then_; } ///< its value in the checkpoint, as JSON
    const std::string& now() const { return now_; }   ///< its value here, as JSON

private:
    std::string name_;
    std::string then_;
    std::string now_;
};

/// It is no checkpoint, or parts of it are missing.
class DamagedCheckpoint : public CheckpointError {
public:
    using CheckpointError::CheckpointError;
};

} // namespace session
