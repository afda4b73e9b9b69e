// The labels that a command line names.
#pragma once

#include "app/TrackRun.h"
#include "assess/Labels.h"

#include <string>
#include <vector>

namespace app {

/// Reads the labels of a run; `-` is not taken for standard input. Throws FileFailure with all that is wrong in the file.
std::vector<assess::Label> readLabelFile(const std::string& path, const TrackRun& track);

/// Tells on standard error of labels in whose time there is no step.
void tellEmptyLabels(const std::string& path, const std::vector<std::size_t>& lines);

} // namespace app
