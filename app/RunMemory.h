// What a run remembers beside the tracker and the reader, as a checkpoint holds it.
#pragma once

#include "report/Tracking.h"

#include <nlohmann/json.hpp>

namespace app {

struct RunMemory {
    bool unexplained = false; ///< of some step: nothing was found, or the search was cut
    bool faultFound = false;
    std::size_t steps = 0;
    std::size_t linesLeftOut = 0;
    report::WriterMemory::Table table;
};

nlohmann::json runMemoryJson(const RunMemory& memory);
/// Throws nlohmann::json::exception.
RunMemory runMemoryFromJson(const nlohmann::json& json);

} // namespace app
