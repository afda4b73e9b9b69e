// Small plants in pieces, from which the text of their model file is written: so that the same plant can be written in several ways.
//
//     written::PlantText plant = written::randomPlantText(random);
//     language::readModelText("plant.itms", written::text(plant));
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace written {

/// A formula of the language. `variable` and `other` are paths such as "core.out".
struct Formula {
    enum class Kind {
        is,      ///< variable = values.front()
        isNot,   ///< variable != values.front()
        in,      ///< variable in {values}
        same,    ///< variable = other, both of which have `values`
        no,      ///< !parts.front()
        both,    ///< parts, with & between them
        either,  ///< parts, with | between them
        follows, ///< parts[0] -> parts[1]
        equals,  ///< parts[0] <-> parts[1]
    };

    Kind kind = Kind::is;
    std::string variable = {};
    std::string other = {};
    std::vector<std::string> values = {};
    std::vector<Formula> parts = {};
};

Formula is(const std::string& variable, const std::string& value);
Formula isNot(const std::string& variable, const std::string& value);
Formula in(const std::string& variable, const std::vector<std::string>& values);
Formula same(const std::string& variable, const std::string& other,
             const std::vector<std::string>& values);
Formula no(const Formula& formula);
Formula both(const std::vector<Formula>& parts);
Formula either(const std::vector<Formula>& parts);
Formula follows(const Formula& condition, const Formula& conclusion);
Formula equals(const Formula& one, const Formula& other);

struct Variable {
    std::string kind; ///< mode, cond or command
    std::string name;
    std::vector<std::string> values;
    std::map<std::string, std::string> marks = {}; ///< by value: "initial" or "fault"
    std::string lost = {};                         ///< a probability; empty: it never is
};

struct Part {
    std::string name;
    std::string type;
};

/// A transition; without a probability where `probability` is empty.
struct Change {
    std::string kind; ///< nominal, fault, repair
    std::vector<std::string> from;
    std::string to;
    std::optional<Formula> guard = std::nullopt;
    std::string probability = {};
};

struct Binding {
    std::string kind; ///< observe or input
    std::string variable;
    std::string varies = {};
    std::string misread = {};
};

/// A component, or the system.
struct Body {
    std::string name;
    std::vector<Variable> variables = {};
    std::vector<Part> parts = {};
    std::vector<Formula> laws = {};
    std::vector<Change> changes = {};
    std::vector<Binding> bindings = {};
};

struct PlantText {
    std::vector<Body> components;
    Body system;
};

/// The formula as the language has it.
std::string text(const Formula& formula);
/// The lines between the braces of a body, one statement each.
std::vector<std::string> lines(const Body& body);
/// The file.
std::string text(const PlantText& plant);
/// The file, of bodies and lines in this order: the components, then the system.
struct Lines {
    std::string head;
    std::vector<std::string> lines;
};
std::vector<Lines> blocks(const PlantText& plant);
std::string text(const std::vector<Lines>& blocks);

/// Whether some guard reads a condition.
bool guardsReadConditions(const PlantText& plant);

} // namespace written
