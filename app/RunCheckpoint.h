// The checkpoint of `itms run`: what a session believes, and what the run remembers beside it.
#pragma once

#include "app/AnswerFile.h"
#include "app/TrackRun.h"
#include "report/StepWriter.h"
#include "text/FileLock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace app {

/// What a run remembers of all its steps.
struct RunMemory {
    bool unexplained = false; ///< of some step: nothing was found, or the search was cut
    bool faultFound = false;
    std::size_t steps = 0;
    std::size_t linesLeftOut = 0;
};

/// Where a run stands beside its session and its reader.
struct RunState {
    RunMemory memory;
    report::WriterMemory writer;
    AnswerFile::Written output; ///< by now
};

class RunCheckpoint {
public:
    /// Takes the place for this run alone, until the end. The run outlives this; the options are those that it goes by.
    /// Throws FileFailure when no checkpoint can be written there, and when another run has it.
    RunCheckpoint(std::string path, const TrackOptions& options, TrackRun& run);

    /// The file that shows other runs that the checkpoint is in use.
    static std::string lockOf(const std::string& path);

    /// Throws FileFailure when there is a file, and it is no checkpoint: one that was named by mistake is not replaced.
    void refuseOtherFile() const;
    /// Puts session and reader where the checkpoint has them, and says where the rest stood; nothing where there is no file.
    /// Throws FileFailure when the checkpoint is damaged, or was made with another model or other options.
    /// With `adopts`, a model that had other probabilities will do.
    std::optional<RunState> resume(bool adopts);
    /// Whether the model had other probabilities.
    bool adopted() const { return adopted_; }
    /// Replaces the file. Throws FileFailure. Requires that what the state counts on is on the disk.
    void save(const RunState& state);

private:
    std::string path_;
    const TrackOptions& options_;
    TrackRun& run_;
    text::LockFile lock_;
    bool adopted_ = false;
};

} // namespace app
