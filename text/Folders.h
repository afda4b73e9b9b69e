// Which folder a file is in, whatever links and dots lead there.
#pragma once

#include <string>
#include <vector>

namespace text {

/// Whether a name means a file in the folder, or in a folder in it; of a file that is not there, whether it would be. Links are
/// followed first. An empty name of a folder is the current one.
bool isBelow(const std::string& path, const std::string& folder);
/// The same for one of several folders.
bool isBelowAny(const std::string& path, const std::vector<std::string>& folders);

} // namespace text
