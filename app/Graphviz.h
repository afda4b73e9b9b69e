// The program dot of Graphviz, which draws.
#pragma once

#include <string>

namespace app {

/// Lets dot draw the graph as SVG to standard output. The graph goes to its standard input; no shell is involved.
/// Throws Failure when there is no dot, and when it fails.
void drawSvg(const std::string& graph);

} // namespace app
