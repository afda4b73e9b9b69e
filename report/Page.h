// A report of a run as one page that needs nothing beside it: what is wrong, since when, how sure that is, and why.
#pragma once

#include "report/PageJson.h"

namespace report {

/// The page of a run. Unlike other writers it writes nothing before the end: what comes first on the page is known last. Until
/// then it keeps as much as a page shows, in memory that does not grow with the number of steps; it cannot be resumed.
class PageWriter : public StepWriter<PageStep> {
public:
    /// The plant and the model outlive this.
    PageWriter(Sink sink, PageFacts facts, const plant::Plant& plant,
               const language::ReadResult& model, const Shown& shown);

    void step(const PageStep& step) override { story_.add(step); }
    /// Says on the page that the run was interrupted.
    void interrupt() { facts_.interrupted = true; }
    void end(std::size_t linesLeftOut) override;

private:
    Sink sink_;
    PageFacts facts_;
    const plant::Plant& plant_;
    const language::ReadResult& model_;
    PageStory story_;
};

} // namespace report
