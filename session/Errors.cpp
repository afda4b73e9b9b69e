#include "session/Errors.h"

#include <utility>

namespace session {

namespace {

std::string allOf(const std::vector<text::Diagnostic>& errors)
{
    std::string text;
    for (const text::Diagnostic& error : errors) {
        text += error.format();
    }
    return text;
}

} // namespace

Errors::Errors(std::vector<text::Diagnostic> errors)
    : std::runtime_error(allOf(errors)), errors_(std::move(errors))
{
}

ModelErrors::ModelErrors(std::string file, std::vector<text::Diagnostic> errors,
                         std::vector<text::Diagnostic> warnings)
    : Errors(std::move(errors)), file_(std::move(file)), warnings_(std::move(warnings))
{
}

OtherModel::OtherModel(bool onlyProbabilities)
    : CheckpointError(onlyProbabilities ? "was made with other probabilities in the model"
                                        : "was made with another model"),
      onlyProbabilities_(onlyProbabilities)
{
}

OtherSetting::OtherSetting(std::string name, std::string then, std::string now)
    : CheckpointError("was made with " + name + " " + then + ", not " + now),
      name_(std::move(name)), then_(std::move(then)), now_(std::move(now))
{
}

} // namespace session
