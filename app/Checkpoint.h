// A run's memory on the disk, from which it can go on.
//
// The file's first line is a JSON object: the format, its version, the number of bytes that follow and their hash. What
// follows is one JSON object: the fingerprint of the model, the settings, and what reader, tracker and table
// remember. It is written beside its place, synced, and renamed, so that at any moment the old one or the new one is there.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace app {

/// Replaces the checkpoint at `path`. Throws FileFailure; the old one is still there then.
void writeCheckpoint(const std::string& path, const nlohmann::json& content);

/// Whether a text begins as a checkpoint does, of whatever version.
bool isCheckpoint(std::string_view text);

/// Reads one back. Throws FileFailure for what is not a whole checkpoint; the file is left as it is.
nlohmann::json readCheckpoint(const std::string& path);

} // namespace app
