// The page of a run, and the file that it goes to.
#pragma once

#include "app/TrackRun.h"
#include "report/Page.h"

#include <string>

namespace app {

/// Gathers a run, and writes it when it is over: until then the file stays as it was, and it is replaced as a whole.
class ReportFile {
public:
    /// `-` is standard output. The run and its options outlive this. Throws FileFailure where no file can be written.
    ReportFile(std::string path, const TrackOptions& options, const TrackRun& track,
               const report::Shown& shown);

    /// Takes the step that was taken last.
    void step(const report::StepReport& report);
    /// Writes the page. Throws FileFailure, or Failure for standard output.
    void write();

private:
    std::string path_;
    const TrackRun& track_;
    std::string text_;
    report::PageWriter writer_;
};

} // namespace app
