// The syntax tree of a model file: what was written, with its places, and nothing about what it means.
//
//     component Valve(pStuck = 0.004) {          Component: name, parameters, members
//         cond inflow: zero, positive            Variable
//         law position = open -> outflow = inflow    Law: Formula, an implication of two comparisons
//         fault any -> unknown : pStuck          Transition: sources empty, Expression
//     }
//     system Station { cell[8]: Valve }          System: members, here a Part
//
// The parser makes it, the formatter and the builder of models read it. It is made of plain structs that own
// their parts. A name is kept as written: whether the right side of `a = b` is a value of `a` or another variable
// is not known here. Members stand in the order of the file.
#pragma once

#include "text/SourceText.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace language::syntax {

/// A name with its place.
struct Name {
    std::string text;
    text::Range range;
};

/// A text in double quotes, without them, its escapes (\" and \\) resolved; `range` includes the quotes.
struct Text {
    std::string text;
    text::Range range;
};

/// A number computed from literals, constants, parameters and the indices of loops; in bindings also from channels: "FT-1" - 2,
/// mean("FT-1") over 5 min.
struct Expression {
    enum class Kind {
        number,
        name,
        channel,
        negation,
        sum,
        difference,
        product,
        quotient,
        absolute,
        least,
        greatest,
        mean, ///< over a time, as the next ones: it is the second operand, in `unit`
        minimum,
        maximum,
        spread,
        rate,
        ago
    };

    Kind kind = Kind::number;
    double number = 0; ///< of a number
    /// Of a name: a constant, a parameter, or the index of a loop. Of a channel: the text, in a loop with its indices in braces.
    std::string name;
    std::vector<Expression>
        operands; ///< one of a negation and of `absolute`, two or more of least and greatest, two of the others
    std::optional<Name> unit = {}; ///< of the time of mean to ago
    text::Range range;             ///< of the whole expression, parentheses around it included
};

/// A step of a path: `valveA`, or `cell[i+1]`.
struct Segment {
    Name name;
    std::optional<Expression> index;
};

/// What a formula or a binding speaks of: `outflow`, `branch1.valveA.outflow`, `cell[3].out`. Never empty.
struct Path {
    std::vector<Segment> segments;
    text::Range range;
};

/// A formula. Conjunctions and disjunctions have two or more operands, in the order written: `a & b & c` is one node.
/// Its depth is bounded by Limits::depth.
struct Formula {
    enum class Kind {
        equal,       ///< left = right
        notEqual,    ///< left != right
        member,      ///< left in {values}
        negation,    ///< ! operands[0]
        conjunction, ///< operands & ...
        disjunction, ///< operands | ...
        implication, ///< operands[0] -> operands[1]
        equivalence  ///< operands[0] <-> operands[1]
    };

    Kind kind = Kind::equal;
    std::vector<Formula> operands; ///< of the connectives
    Path left;                     ///< of equal, notEqual, member: a variable
    Path right; ///< of equal, notEqual: a variable or a value (then one segment without index)
    std::vector<Name> values; ///< of member: not empty
    text::Range range;        ///< parentheses around it included
};

/// `5 s`, `0.5 min`. The unit is one of timeUnits().
struct Duration {
    Expression amount;
    Name unit;
    text::Range range;
};

/// `0.004`, `0.001 per second`, `2 * p per step`. Without a unit it is a probability per step. `per` is "step" or a unit of time.
struct Probability {
    Expression amount;
    std::optional<Name> per;
    text::Range range;
};

/// `closed initial`, `stuckOpen fault`.
struct Value {
    Name name;
    bool initial = false;
    bool fault = false;
    text::Range range;
};

enum class VariableKind { mode, condition, command };

/// `mode position { closed initial open stuck fault }`, `cond inflow: zero, positive`,
/// `command request: none, open, close lost 0.01`. At least one value.
struct Variable {
    VariableKind kind = VariableKind::mode;
    Name name;
    std::vector<Value> values;
    std::optional<Expression> lost; ///< of a command: the probability that it does not arrive
    text::Range range;
};

/// `law FORMULA`.
struct Law {
    Formula formula;
    text::Range range;
};

enum class TransitionKind { nominal, fault, repair, idle };

/// `nominal closed -> open when request = open : 0.99`, `fault any -> unknown : 1e-4 per hour`, `repair any -> closed : 1 per day`,
/// `idle closed, open`.
/// A component with several modes says which one is meant: `fault position = closed -> stuck : 0.01`.
struct Transition {
    TransitionKind kind = TransitionKind::nominal;
    std::optional<Name> variable; ///< the mode variable, where it is named
    bool any =
        false; ///< from `any` value that is not a fault, or, of a repair, that is one; then there are no sources
    std::vector<Name>
        sources; ///< otherwise: the values it leaves (or in which an idle one stays), at least one
    std::optional<Name> target; ///< always, except of idle transitions
    std::optional<Formula> guard;
    std::optional<Probability> probability;
    text::Range range;
    text::Range sourcesRange; ///< of `any` or of the list of sources
};

/// `initially position = open`, in a component, in the system, or in the braces of a part (then relative to the part).
struct InitialValue {
    Path variable;
    Name value;
    text::Range range;
};

/// `pStuck = 0.01` among the arguments of a part.
struct Argument {
    Name name;
    Expression value;
    text::Range range;
};

/// `valveB: Valve`, `cell[8]: Cell(p = 0.01) { initially state = on }`. The parts of an array count from 0.
struct Part {
    Name name;
    std::optional<Expression> count; ///< of an array
    Name type;
    std::vector<Argument> arguments;
    std::vector<InitialValue> initials;
    text::Range range;
};

/// A comparison in a row of thresholds.
enum class Order { less, lessOrEqual };

/// `low < 1.2 <= nominal <= 4.5 < high within 0.05`: numbers read as values. There is one more value than there are limits.
struct Thresholds {
    /// What stands between two neighbouring values: `below` before the number, `above` after it. `low < 1.2 <= nominal` puts
    /// 1.2 itself among `nominal`, `low <= 1.2 < nominal` among `low`. The parser accepts all four; just one of the two has to
    /// be lessOrEqual.
    struct Limit {
        Order below = Order::less;
        Expression number;
        Order above = Order::lessOrEqual;
        text::Range range; ///< of the comparison, the number and the comparison
    };

    std::vector<Name> values;
    std::vector<Limit> limits;
    std::optional<Expression>
        hysteresis; ///< `within`: how far a reading has to be past a limit to change the value
    text::Range range;
};

/// `open = 1` or `open = "OPEN"` or, without a reading, `none otherwise`.
struct Reading {
    Name value;
    std::variant<std::monostate, Expression, Text> reading;
    text::Range range;
};

/// `open = 1, close = 0, none otherwise`: readings that stand for values.
struct Readings {
    std::vector<Reading> readings; ///< not empty
    text::Range range;
};

/// `settled 15 min after "CMD-1", "CMD-2"`: nothing is observed until these have not changed for so long.
struct Settling {
    Duration duration;
    std::vector<Text> channels; ///< not empty
    text::Range range;
};

/// `0 .. 100`: both bounds are included.
struct NumberRange {
    Expression from;
    Expression to;
    text::Range range;
};

/// `noise 0.02`, or `noise zero = 0 .. 0.04, low = 1 .. 4`: how a simulated plant spreads the readings of a value.
struct Noise {
    struct Value {
        Name value;
        NumberRange readings;
        text::Range range;
    };

    std::optional<Expression> deviation; ///< or else
    std::vector<Value> values;
    text::Range range;
};

/// `observe tank.pressure from "PT-100" : low < 1.2 <= nominal hold 5 s varies 2 per hour`, `input tank.inflow from "FT-1"` and
/// `command valveA.request from "XV-A" : open = 1`.
/// Without a translation the channel has the names of values. In a loop the name of the channel may have indices in
/// braces: `"T-{i}"`, `"T-{i+1}"`; they are left in the text here.
struct Binding {
    enum class Kind { observation, input, command, measurable };

    Kind kind = Kind::observation;
    Path variable;                     ///< of what is measurable, nothing else is said
    std::optional<Expression> channel; ///< or what is computed from some; missing: the variable's own name
    std::variant<std::monostate, Thresholds, Readings> translation;
    std::optional<Duration> hold;        ///< how long the last reading stands for a missing one
    std::optional<Duration> persistence; ///< `for`: how long a new value has to be read to count
    std::optional<Settling> settling;
    std::optional<NumberRange> physical; ///< `within 0 .. 100`: what can be read at all
    std::optional<Noise> noise;
    std::optional<Expression> misread; ///< how probable it is that a reading is wrong
    std::optional<Probability> varies; ///< how often an open reading changes; its range begins at the word
    text::Range range;
};

/// `step 0.5 s`: the length of a step, against which rates per second are taken.
struct StepLength {
    Duration duration;
    text::Range range;
};

struct Loop;

using Member =
    std::variant<Variable, Law, Transition, Part, InitialValue, Binding, StepLength, Loop>;

/// `for i in 0..6: law cell[i].out = cell[i+1].in`, or with several members in braces. Both bounds are included. The members
/// are laws, bindings, initial values and loops.
struct Loop {
    Name index;
    Expression first;
    Expression last;
    std::vector<Member> members;
    text::Range range;
};

/// `pStuck = 0.004`, or without a default `pStuck`, among the parameters of a component.
struct Parameter {
    Name name;
    std::optional<Expression> value;
    text::Range range;
};

/// `component NAME(PARAMETERS) { MEMBERS }`. Bindings and StepLength do not occur here.
struct Component {
    Name name;
    std::vector<Parameter> parameters;
    std::vector<Member> members;
    text::Range range;
};

/// `system NAME { MEMBERS }`: a component that is not part of another.
struct System {
    Name name;
    std::vector<Member> members;
    text::Range range;
};

/// `import "fluids.itms"`.
struct Import {
    Text path;
    text::Range range;
};

/// `const pStuck = 0.004`.
struct Constant {
    Name name;
    Expression value;
    text::Range range;
};

using Declaration = std::variant<Import, Constant, Component, System>;

/// A model file.
struct File {
    std::vector<Declaration> declarations;
};

/// What a file may need of memory and stack, so that none makes the reader fail without a message.
struct Limits {
    std::size_t fileBytes = std::size_t{256} << 20U;
    std::size_t depth = 100;      ///< of nested formulas, expressions and braces
    std::size_t nameLength = 255; ///< bytes of a name
    std::size_t errors = 100; ///< reported of one file; then a last one says that there may be more
};

} // namespace language::syntax
