// Models as JSON, for programs that make or read them. The form is that of docs/model.schema.json.
//
//     {"format": "itms-model", "v": 1, "name": "plants/pump", "stepSeconds": 1.0, "files": ["plants/pump.itms"],
//      "components": [{"name": "pump", "variables": [{"name": "state", "kind": "mode",
//                      "values": [{"name": "on"}, {"name": "broken", "fault": true}], "initial": "on"}, ...]}],
//      "laws": [{"owner": "pump", "literals": ["!pump.state=on", "pump.flow=positive"],
//                "place": {"file": 0, "line": 7, "column": 5}}],
//      "transitions": [{"kind": "fault", "name": "broken", "from": "pump.state=on", "to": "pump.state=broken",
//                       "guard": [], "probability": 0.01}],
//      "channels": [{"kind": "observe", "channel": "F-1", "variable": "pump.flow"}]}
//
// Everything is in it that a model's objects and bindings hold, and in the order in which they were made: a model that is read
// back is the same in all that the engine can observe, and is written with the same bytes. Numbers are written so that they
// are read as the same doubles.
#pragma once

#include "language/meaning/ReadResult.h"

namespace language {

/// The model of a result as JSON, which requires that there is one: each component, law, transition and channel on a line of its
/// own, the last one ended. Bytes that are no UTF-8, which names of files may have, are replaced. Linear.
std::string modelJson(const ReadResult& read);

/// Reads such a text. What is wrong is reported as for model files, with line and column where it is no JSON, else with the JSON
/// pointer of the place. `path` is the base name, less its suffix, and the only file, unless the text has its own.
/// Each clause counts as a law. Throws nothing but std::bad_alloc. Linear in the size of the text and of the plant.
ReadResult readModelJson(const std::string& path, std::string text, const ReadOptions& options = {});

/// Whether a file of this name is read as JSON: its suffix is `.json`.
bool isJsonPath(const std::string& path);

} // namespace language
