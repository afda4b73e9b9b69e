// A tracker's and a reader's memory as JSON, for checkpoints. Atoms and variables stand as their numbers in the plant.
#pragma once

#include "monitor/track/Tracker.h"
#include "session/CheckpointField.h"
#include "session/ReadingChanges.h"
#include "telemetry/ReaderState.h"

#include <nlohmann/json_fwd.hpp>

namespace session {

nlohmann::json memoryJson(const monitor::TrackMemory& memory, const plant::Plant& plant);
/// Throws DamagedCheckpoint, with the place, for what a tracker of the plant cannot have remembered.
monitor::TrackMemory memoryFromJson(const CheckpointField& field, const plant::Plant& plant);

nlohmann::json readingsJson(const ReadingChanges& changes);
/// Throws as memoryFromJson().
std::map<plant::VariableIndex, ReadingCount> readingsFromJson(const CheckpointField& field,
                                                              const plant::Plant& plant);

nlohmann::json readerJson(const telemetry::ReaderState& state);
/// Throws as memoryFromJson().
telemetry::ReaderState readerFromJson(const CheckpointField& field);

} // namespace session
