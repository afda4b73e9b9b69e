#include "telemetry/StepFiles.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <stdexcept>

namespace telemetry {

StepFiles::StepFiles(std::vector<std::string> paths, const plant::Model& model,
                     const plant::Bindings& bindings, const ReadSettings& settings)
    : paths_(std::move(paths)), model_(model), bindings_(bindings), settings_(settings)
{
    if (paths_.size() > 1) sortByTime();
    reader_ = open(0);
}

std::unique_ptr<StepReader> StepFiles::open(std::size_t file) const
{
    ReadSettings settings = settings_;
    settings.mayGrow = settings_.mayGrow && file + 1 == paths_.size();
    return std::make_unique<StepReader>(paths_[file], model_, bindings_, settings);
}

void StepFiles::sortByTime()
{
    std::vector<std::pair<double, std::string>> timed;
    ReadSettings settings = settings_;
    settings.skipBad = true;
    for (const std::string& path : paths_) {
        double first = std::numeric_limits<double>::infinity();
        StepReader reader(path, model_, bindings_, settings);
        while (true) {
            const auto next = reader.next();
            if (const auto* step = std::get_if<Step>(&next)) first = step->t;
            if (!std::holds_alternative<Mistake>(next)) break;
        }
        timed.emplace_back(first, path);
    }
    std::stable_sort(timed.begin(), timed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < timed.size(); ++i) {
        paths_[i] = std::move(timed[i].second);
    }
}

std::variant<Step, Mistake, End> StepFiles::next()
{
    while (!ended_) {
        auto next = reader_->next();
        if (const auto* mistake = std::get_if<Mistake>(&next)) ended_ = mistake->endsReading;
        const auto* end = std::get_if<End>(&next);
        if (!end || end->interrupted || file_ + 1 == paths_.size()) return next;
        const ReaderState state = reader_->state();
        for (text::Diagnostic& note : reader_->takeNotes()) {
            notes_.push_back(std::move(note));
        }
        for (text::Diagnostic& note : reader_->noteSummary()) {
            summary_.push_back(std::move(note));
        }
        reader_ = open(++file_);
        reader_->restore(state, Input::continuation);
    }
    return End{};
}

ReaderState StepFiles::state() const
{
    ReaderState state = reader_->state();
    state.files = file_;
    return state;
}

void StepFiles::restore(const ReaderState& state, Input input)
{
    if (input == Input::continuation) {
        reader_->restore(state, input);
        return;
    }
    if (state.files >= paths_.size()) {
        throw std::invalid_argument(fmt::format("{} files were read before, and there are {}",
                                                state.files + 1, paths_.size()));
    }
    file_ = state.files;
    reader_ = open(file_);
    reader_->restore(state, input);
}

std::vector<text::Diagnostic> StepFiles::takeNotes()
{
    std::vector<text::Diagnostic> all = std::exchange(notes_, {});
    for (text::Diagnostic& note : reader_->takeNotes()) {
        all.push_back(std::move(note));
    }
    return all;
}

std::vector<text::Diagnostic> StepFiles::noteSummary() const
{
    std::vector<text::Diagnostic> all = summary_;
    for (text::Diagnostic& note : reader_->noteSummary()) {
        all.push_back(std::move(note));
    }
    return all;
}

double StepFiles::doneShare() const
{
    return (static_cast<double>(file_) + reader_->doneShare()) / static_cast<double>(paths_.size());
}

} // namespace telemetry
