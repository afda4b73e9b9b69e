// The data of a page: one JSON object with a plant and the story of a run, most of it in columns. docs/report.md has its fields.
#pragma once

#include "report/PageStory.h"
#include "report/PlantOutline.h"

#include <string>

namespace report {

/// What a page says beside the story.
struct PageFacts {
    std::string model;     ///< the name of its file
    std::string telemetry; ///< likewise; `-`: standard input
    bool interrupted = false;
    std::size_t linesLeftOut = 0;
};

/// Writes the object piece by piece. Every `<` is escaped, so that it can stand in a page whatever names there are.
/// Linear in the plant and in the points of the timeline.
void writePageJson(const Sink& sink, const PageFacts& facts, const language::ReadResult& model,
                   const plant::Plant& plant, const PageStory& story);

/// The plant's part of it, an object of its own: components, variables, channels, laws, connections, sources.
std::string pagePlantJson(const language::ReadResult& model, const plant::Plant& plant,
                          const PageStory& story);

/// The text of a JSON string with `<` as `\u003c`, or of any JSON.
std::string withoutMarkup(std::string json);

} // namespace report
