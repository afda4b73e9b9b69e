#include "app/RunMemory.h"

namespace app {

nlohmann::json runMemoryJson(const RunMemory& memory)
{
    return {{"unexplained", memory.unexplained},
            {"faultFound", memory.faultFound},
            {"steps", memory.steps},
            {"linesLeftOut", memory.linesLeftOut},
            {"table",
             {{"last", memory.table.last},
              {"total", memory.table.total},
              {"incomplete", memory.table.incomplete},
              {"dropped", memory.table.dropped},
              {"counts", memory.table.counts}}}};
}

RunMemory runMemoryFromJson(const nlohmann::json& json)
{
    RunMemory memory;
    memory.unexplained = json.at("unexplained").get<bool>();
    memory.faultFound = json.at("faultFound").get<bool>();
    memory.steps = json.at("steps").get<std::size_t>();
    memory.linesLeftOut = json.at("linesLeftOut").get<std::size_t>();
    const nlohmann::json& table = json.at("table");
    memory.table.last = table.at("last").get<std::string>();
    memory.table.total = table.at("total").get<std::size_t>();
    memory.table.incomplete = table.at("incomplete").get<std::size_t>();
    memory.table.dropped = table.at("dropped").get<std::size_t>();
    memory.table.counts = table.at("counts").get<std::map<std::string, std::size_t>>();
    return memory;
}

} // namespace app
