// Several files as one stream of steps, in the order of their first times: a logger's days or months. Each has a header of its own.
#pragma once

#include "telemetry/StepReader.h"

#include <memory>
#include <string>
#include <vector>

namespace telemetry {

class StepFiles : public StepSource {
public:
    /// One file, or `-` for standard input, is not looked at before it is read; of several the first steps are read, and a file without
    /// steps comes last. Only the last one may grow.
    /// Requires: a path at least, and no `-` among several; model and bindings outlive this. Throws ReadFailure when a file cannot be
    /// opened.
    StepFiles(std::vector<std::string> paths, const plant::Model& model,
              const plant::Bindings& bindings, const ReadSettings& settings = {});

    std::variant<Step, Mistake, End> next() override;
    ReaderState state() const override;
    void restore(const ReaderState& state, Input input = Input::same) override;

    bool isWallClock() const { return reader_->isWallClock(); }
    /// As StepReader has them; of several files the notes of all.
    std::optional<std::size_t> cutAt() const { return reader_->cutAt(); }
    std::size_t mistakesAhead() const { return reader_->mistakesAhead(); }
    std::vector<text::Diagnostic> takeNotes();
    std::vector<text::Diagnostic> noteSummary() const;

    double doneShare() const override;
    /// Of the file that is being read.
    const std::string& name() const override { return reader_->name(); }

private:
    std::unique_ptr<StepReader> open(std::size_t file) const;
    void sortByTime();

    std::vector<std::string> paths_;
    const plant::Model& model_;
    const plant::Bindings& bindings_;
    ReadSettings settings_;
    std::unique_ptr<StepReader> reader_;
    std::size_t file_ = 0;
    bool ended_ = false;
    std::vector<text::Diagnostic> notes_;   // of files that are done with
    std::vector<text::Diagnostic> summary_; // of these
};

} // namespace telemetry
