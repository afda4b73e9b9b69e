// What a small file beside a model says about the telemetry of the plant.
//
//     [telemetry]
//     time-column = "Datetime"
//     time-format = "%m/%d/%Y %H:%M"
//
//     [rename]
//     "AHU-1: Supply Air Temperature" = "T-sup"
#pragma once

#include "app/FileRoles.h"
#include "app/ReadOptions.h"
#include "telemetry/Names.h"

#include <memory>
#include <string>

namespace app {

/// The files of that kind that a run reads: one beside the model, or the one that the options name, and the one of --rename.
class PlantFiles {
public:
    /// Reads what there is, and adds the files to those of the run. Throws FileFailure with all mistakes of a file, and for one that
    /// the options name and that is not there.
    PlantFiles(const std::string& modelPath, const ReadOptions& options, FileRoles& files);
    PlantFiles(PlantFiles&&) noexcept;
    ~PlantFiles();

    /// How telemetry is read, by the options and the files. Throws FileFailure, with the place, where a column would be called by a
    /// name that the model does not have; Failure for settings that do not go together.
    Reading reading(const plant::Model& model, const plant::Bindings& bindings) const;

private:
    struct Content;
    std::unique_ptr<Content> content_;
};

} // namespace app
