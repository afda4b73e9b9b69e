// A tracker's and a reader's memory as JSON, for checkpoints. Atoms and variables stand as their numbers in the plant.
#pragma once

#include "monitor/track/Tracker.h"
#include "session/ReadingChanges.h"
#include "telemetry/ReaderState.h"

#include <nlohmann/json_fwd.hpp>

namespace session {

nlohmann::json memoryJson(const monitor::TrackMemory& memory, const plant::Plant& plant);
/// Throws nlohmann::json::exception, or std::out_of_range for a number that the plant has not.
monitor::TrackMemory memoryFromJson(const nlohmann::json& json, const plant::Plant& plant);

nlohmann::json readingsJson(const ReadingChanges& changes);
/// Throws as memoryFromJson().
std::map<plant::VariableIndex, ReadingCount> readingsFromJson(const nlohmann::json& json,
                                                              const plant::Plant& plant);

nlohmann::json readerJson(const telemetry::ReaderState& state);
/// Throws nlohmann::json::exception.
telemetry::ReaderState readerFromJson(const nlohmann::json& json);

} // namespace session
