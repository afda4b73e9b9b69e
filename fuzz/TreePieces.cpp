#include "fuzz/TreePieces.h"

#include <optional>
#include <variant>

namespace language::syntax {

namespace {

class Walk {
public:
    explicit Walk(const text::SourceText& source) : source_(source) {}

    void visit(const File& file)
    {
        for (const Declaration& declaration : file.declarations) {
            std::visit([this](const auto& one) { take(PieceKind::declaration, one.range); },
                       declaration);
            std::visit([this](const auto& one) { visit(one); }, declaration);
        }
    }

    std::vector<Piece> pieces;

private:
    void take(PieceKind kind, const text::Range& range)
    {
        const std::string_view bytes = source_.at(range);
        if (!bytes.empty()) {
            pieces.push_back({kind, static_cast<std::size_t>(bytes.data() - source_.text().data()),
                              bytes.size()});
        }
    }

    void visit(const Import&) {}
    void visit(const Constant& constant)
    {
        visit(constant.name);
        number(constant.value);
    }
    void visit(const Component& component)
    {
        visit(component.name);
        for (const Parameter& parameter : component.parameters) {
            visit(parameter.name);
            number(parameter.value);
        }
        members(component.members, PieceKind::member);
    }
    void visit(const System& system) { members(system.members, PieceKind::member); }
    void members(const std::vector<Member>& members, PieceKind kind)
    {
        for (const Member& member : members) {
            std::visit(
                [&](const auto& one) {
                    take(kind, one.range);
                    visit(one);
                },
                member);
        }
    }

    void visit(const Variable& variable)
    {
        visit(variable.name);
        for (const Value& value : variable.values) {
            take(PieceKind::value, value.range);
        }
        number(variable.lost);
    }
    void visit(const Law& law) { visit(law.formula); }
    void visit(const Transition& transition)
    {
        for (const Name& source : transition.sources) {
            visit(source);
        }
        if (transition.target) visit(*transition.target);
        if (transition.guard) visit(*transition.guard);
        if (transition.probability) number(transition.probability->amount);
    }
    void visit(const InitialValue& initial)
    {
        visit(initial.variable);
        visit(initial.value);
    }
    void visit(const Part& part)
    {
        visit(part.name);
        number(part.count);
        visit(part.type);
        for (const Argument& argument : part.arguments) {
            number(argument.value);
        }
        for (const InitialValue& initial : part.initials) {
            visit(initial);
        }
    }
    void visit(const Binding& binding)
    {
        visit(binding.variable);
        if (binding.channel) take(PieceKind::computed, binding.channel->range);
        if (const auto* thresholds = std::get_if<Thresholds>(&binding.translation)) {
            for (const Name& value : thresholds->values) {
                visit(value);
            }
            for (const Thresholds::Limit& limit : thresholds->limits) {
                take(PieceKind::computed, limit.number.range);
            }
            number(thresholds->hysteresis);
        }
        if (const auto* readings = std::get_if<Readings>(&binding.translation)) {
            for (const Reading& reading : readings->readings) {
                visit(reading.value);
            }
        }
        if (binding.hold) number(binding.hold->amount);
        if (binding.persistence) number(binding.persistence->amount);
        if (binding.varies) number(binding.varies->amount);
    }
    void visit(const StepLength& step) { number(step.duration.amount); }
    void visit(const Loop& loop)
    {
        visit(loop.index);
        number(loop.first);
        number(loop.last);
        members(loop.members, PieceKind::looped);
    }

    void visit(const Formula& formula)
    {
        take(PieceKind::formula, formula.range);
        for (const Formula& operand : formula.operands) {
            visit(operand);
        }
        visit(formula.left);
        visit(formula.right);
        for (const Name& value : formula.values) {
            visit(value);
        }
    }
    void visit(const Path& path)
    {
        if (path.segments.empty()) return;
        take(PieceKind::path, path.range);
        for (const Segment& segment : path.segments) {
            visit(segment.name);
            number(segment.index);
        }
    }
    void visit(const Name& name) { take(PieceKind::name, name.range); }
    void number(const Expression& expression)
    {
        take(PieceKind::number, expression.range);
        for (const Expression& operand : expression.operands) {
            number(operand);
        }
    }
    void number(const std::optional<Expression>& expression)
    {
        if (expression) number(*expression);
    }

    const text::SourceText& source_;
};

} // namespace

} // namespace language::syntax

std::vector<Piece> piecesOf(const text::SourceText& source)
{
    const language::ParsedFile parsed = language::parse(source, {});
    if (!parsed.errors.empty()) return {};
    language::syntax::Walk walk(source);
    walk.visit(parsed.file);
    return std::move(walk.pieces);
}
