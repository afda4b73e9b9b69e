#include "tests/language/syntax/SyntaxText.h"

#include <array>
#include <charconv>
#include <string_view>

namespace language {

namespace {

using namespace syntax;

class Writer {
public:
    std::string out;

    void line(const std::string& text) { out += std::string(2 * depth_, ' ') + text + "\n"; }

    void operator()(const Import& import) { line("(import " + text(import.path) + ")"); }
    void operator()(const Constant& constant)
    {
        line("(const " + constant.name.text + " " + text(constant.value) + ")");
    }
    void operator()(const Component& component)
    {
        std::string head = "(component " + component.name.text;
        for (const Parameter& parameter : component.parameters) {
            head += " (" + parameter.name.text +
                    (parameter.value ? " " + text(*parameter.value) : "") + ")";
        }
        block(head, component.members);
    }
    void operator()(const System& system) { block("(system " + system.name.text, system.members); }
    void operator()(const Loop& loop)
    {
        block("(for " + loop.index.text + " " + text(loop.first) + " " + text(loop.last),
              loop.members);
    }
    void operator()(const Variable& variable)
    {
        static constexpr std::array<std::string_view, 3> words{"mode", "cond", "command"};
        std::string written = "(" + std::string(words[static_cast<std::size_t>(variable.kind)]) +
                              " " + variable.name.text;
        for (const Value& value : variable.values) {
            written += " " + value.name.text + (value.initial ? "/initial" : "") +
                       (value.fault ? "/fault" : "");
        }
        line(written + (variable.lost ? " (lost " + text(*variable.lost) + ")" : "") + ")");
    }
    void operator()(const Law& law) { line("(law " + text(law.formula) + ")"); }
    void operator()(const Transition& transition)
    {
        static constexpr std::array<std::string_view, 4> words{"nominal", "fault", "repair", "idle"};
        std::string written = "(" + std::string(words[static_cast<std::size_t>(transition.kind)]);
        if (transition.variable) written += " (of " + transition.variable->text + ")";
        written += transition.any ? " any" : " (" + names(transition.sources) + ")";
        if (transition.target) written += " " + transition.target->text;
        if (transition.guard) written += " (when " + text(*transition.guard) + ")";
        if (transition.probability) written += " (p " + text(*transition.probability) + ")";
        line(written + ")");
    }
    void operator()(const Part& part)
    {
        std::string written = "(part " + part.name.text;
        if (part.count) written += "[" + text(*part.count) + "]";
        written += " " + part.type.text;
        for (const Argument& argument : part.arguments) {
            written += " (" + argument.name.text + " " + text(argument.value) + ")";
        }
        for (const InitialValue& initial : part.initials) {
            written += " " + text(initial);
        }
        line(written + ")");
    }
    void operator()(const InitialValue& initial) { line(text(initial)); }
    void operator()(const Binding& binding)
    {
        static constexpr std::array<std::string_view, 4> words{"observe", "input", "command",
                                                               "measurable"};
        std::string written = "(" + std::string(words[static_cast<std::size_t>(binding.kind)]) +
                              " " + text(binding.variable);
        if (binding.channel) written += " " + text(*binding.channel);
        if (const auto* thresholds = std::get_if<Thresholds>(&binding.translation))
            written += text(*thresholds);
        if (const auto* readings = std::get_if<Readings>(&binding.translation))
            written += text(*readings);
        if (binding.hold) written += " (hold " + text(*binding.hold) + ")";
        if (binding.persistence) written += " (for " + text(*binding.persistence) + ")";
        if (binding.settling) {
            written += " (settled " + text(binding.settling->duration);
            for (const Text& channel : binding.settling->channels) {
                written += " " + text(channel);
            }
            written += ")";
        }
        if (binding.varies) written += " (varies " + text(*binding.varies) + ")";
        line(written + ")");
    }
    void operator()(const StepLength& step) { line("(step " + text(step.duration) + ")"); }

private:
    template <typename Members> void block(const std::string& head, const Members& members)
    {
        line(head);
        ++depth_;
        for (const Member& member : members) {
            std::visit(*this, member);
        }
        --depth_;
        line(")");
    }

    static std::string names(const std::vector<Name>& list)
    {
        std::string written;
        for (const Name& name : list) {
            written += (written.empty() ? "" : " ") + name.text;
        }
        return written;
    }

    static std::string text(const Text& text) { return "\"" + text.text + "\""; }
    static std::string text(const Duration& duration)
    {
        return text(duration.amount) + " " + duration.unit.text;
    }
    static std::string text(const Probability& probability)
    {
        return text(probability.amount) + (probability.per ? " " + probability.per->text : "");
    }
    static std::string text(const InitialValue& initial)
    {
        return "(initially " + text(initial.variable) + " " + initial.value.text + ")";
    }
    static std::string text(const Path& path)
    {
        std::string written;
        for (const Segment& segment : path.segments) {
            written += (written.empty() ? "" : ".") + segment.name.text;
            if (segment.index) written += "[" + text(*segment.index) + "]";
        }
        return written;
    }
    static std::string text(const Expression& expression)
    {
        static constexpr std::array<std::string_view, 17> signs{
            "",    "",    "",     "-",   "+",   "-",      "*",    "/",  "abs",
            "min", "max", "mean", "min", "max", "spread", "rate", "ago"};
        if (expression.kind == Expression::Kind::channel) return "\"" + expression.name + "\"";
        if (expression.kind == Expression::Kind::name) return expression.name;
        if (expression.kind == Expression::Kind::number) {
            std::array<char, 32> digits{};
            const auto end =
                std::to_chars(digits.data(), digits.data() + digits.size(), expression.number).ptr;
            return {digits.data(), end};
        }
        std::string written = "(" + std::string(signs[static_cast<std::size_t>(expression.kind)]);
        for (const Expression& operand : expression.operands) {
            written += " " + text(operand);
        }
        if (expression.unit) written += " " + expression.unit->text;
        return written + ")";
    }
    static std::string text(const Formula& formula)
    {
        static constexpr std::array<std::string_view, 8> signs{"=", "!=", "in", "!",
                                                               "&", "|",  "->", "<->"};
        std::string written = "(" + std::string(signs[static_cast<std::size_t>(formula.kind)]);
        if (!formula.left.segments.empty()) written += " " + text(formula.left);
        if (!formula.right.segments.empty()) written += " " + text(formula.right);
        if (!formula.values.empty()) written += " " + names(formula.values);
        for (const Formula& operand : formula.operands) {
            written += " " + text(operand);
        }
        return written + ")";
    }
    static std::string text(const Thresholds& thresholds)
    {
        const auto sign = [](Order order) { return order == Order::less ? " < " : " <= "; };
        std::string written = " (" + thresholds.values.front().text;
        for (std::size_t i = 0; i < thresholds.limits.size(); ++i) {
            const Thresholds::Limit& limit = thresholds.limits[i];
            written += sign(limit.below) + text(limit.number) + sign(limit.above) +
                       thresholds.values[i + 1].text;
        }
        return written + (thresholds.hysteresis ? " within " + text(*thresholds.hysteresis) : "") +
               ")";
    }
    static std::string text(const Readings& readings)
    {
        std::string written;
        for (const Reading& reading : readings.readings) {
            written += " (" + reading.value.text + " ";
            if (const auto* number = std::get_if<Expression>(&reading.reading)) {
                written += text(*number);
            } else if (const auto* word = std::get_if<Text>(&reading.reading)) {
                written += text(*word);
            } else {
                written += "otherwise";
            }
            written += ")";
        }
        return written;
    }

    std::size_t depth_ = 0;
};

} // namespace

std::string syntaxText(const syntax::File& file)
{
    Writer writer;
    for (const Declaration& declaration : file.declarations) {
        std::visit(writer, declaration);
    }
    return writer.out;
}

} // namespace language
