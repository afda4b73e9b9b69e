// Bad files with the text beside them that is all that is said about them.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// The bytes of a file.
inline std::string contents(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The files with that suffix in a folder of the project, by name.
inline std::vector<std::filesystem::path> filesOf(const std::string& folder,
                                                  const std::string& suffix)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(ITMS_ROOT) / folder)) {
        if (entry.path().extension() == suffix) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}
