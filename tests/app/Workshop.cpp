#include "tests/app/Workshop.h"

#include "tests/app/Program.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

Workshop::Workshop()
{
    std::string name = (fs::temp_directory_path() / "itms-workshop-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    folder_ = name;
    fs::copy_file(ITMS_ROOT "/tests/app/models/pipe.itms", folder_ / "pipe.itms");
    write("day.jsonl", R"({"t": 0, "observations": {"FT-1": 1, "FT-2": 1}}
{"t": 1, "observations": {"FT-1": 1, "FT-2": 1}}
{"t": 2, "observations": {"FT-1": 1, "FT-2": 0}}
)");
}

Workshop::~Workshop()
{
    fs::remove_all(folder_);
}

std::string Workshop::shell(const std::string& command) const
{
    write("../" + folder_.filename().string() + ".sh", command + "\n");
    const std::string script = folder_.string() + ".sh";
    const std::string line = "cd '" + folder_.string() + "' && PATH='" + programFolder() +
                             "':$PATH bash '" + script + "' 2>&1 </dev/null";
    std::string text = outputOf(line);
    fs::remove(script);
    return text;
}

void Workshop::write(const std::string& name, const std::string& text) const
{
    std::ofstream(folder_ / name, std::ios::binary) << text;
}

std::string Workshop::read(const std::string& name) const
{
    std::ifstream file(folder_ / name, std::ios::binary);
    if (!file) return "(nothing)";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> Workshop::names() const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}
