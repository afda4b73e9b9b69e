#include "language/meaning/FormulaReader.h"

#include "language/meaning/FormulaTranslator.h"
#include "language/meaning/NameMistakes.h"
#include "language/meaning/PlantPaths.h"
#include "language/meaning/Types.h"
#include "language/syntax/Parser.h"
#include "plant/Names.h"
#include "text/Wording.h"

#include <algorithm>

namespace language {

namespace {

using Kind = syntax::Formula::Kind;

std::string quotedName(const StateVar& variable)
{
    return text::quoted(plant::nameOf(variable));
}

// Finds what is wrong with the names of a formula.
class NameChecks {
public:
    NameChecks(const PlantPaths& names, Report& report) : names_(names), report_(report) {}

    void check(const syntax::Formula& formula)
    {
        switch (formula.kind) {
        case Kind::equal:
        case Kind::notEqual: checkComparison(formula); return;
        case Kind::member: checkMember(formula); return;
        default: break;
        }
        for (const syntax::Formula& operand : formula.operands) {
            check(operand);
        }
    }

private:
    // A single word on the right is a value of the left side if it can be, and else a variable of the system.
    void checkComparison(const syntax::Formula& formula)
    {
        const StateVar* left = names_.find(formula.left, report_);
        const syntax::Segment& first = formula.right.segments.front();
        const bool word = formula.right.segments.size() == 1 && !first.index;
        if (word && (!left || plant::value(left, first.name.text))) return;
        const std::vector<std::string_view> known = names_.first();
        if (word && std::find(known.begin(), known.end(), first.name.text) == known.end()) {
            checkValue(*left, first.name, true);
            return;
        }
        const StateVar* right = names_.find(formula.right, report_);
        if (left && right) checkSameValues(formula, *left, *right);
    }

    void checkMember(const syntax::Formula& formula)
    {
        const StateVar* left = names_.find(formula.left, report_);
        if (!left) return;
        for (const syntax::Name& name : formula.values) {
            checkValue(*left, name, false);
        }
    }

    void checkValue(const StateVar& variable, const syntax::Name& name, bool orVariable)
    {
        if (plant::value(&variable, name.text)) return;
        const std::vector<std::string_view> values = plant::valuesOf(variable);
        const std::string owner = plant::nameOf(variable);
        text::Message what = orVariable
                                 ? plant::unknownOperand(name.text, owner, values, names_.first())
                                 : plant::unknownValue(name.text, owner, values);
        for (const StateVar* other : *variable.comp->stateVars) {
            if (what.hint.empty() && plant::value(other, name.text)) {
                what.hint = "it is a value of " + quotedName(*other);
            }
        }
        report_.at(name.range).report(std::move(what));
    }

    void checkSameValues(const syntax::Formula& formula, const StateVar& left, const StateVar& right)
    {
        const auto operand = [](const StateVar& variable) {
            return Operand{plant::nameOf(variable), quotedName(variable), plant::valuesOf(variable)};
        };
        auto what = differentValues(operand(left), operand(right));
        if (what) report_.at(formula.range).report(std::move(*what));
    }

    const PlantPaths& names_;
    Report& report_;
};

plant::LawFormula negationOf(plant::LawFormula formula)
{
    std::vector<plant::LawFormula> operands;
    operands.push_back(std::move(formula));
    return plant::LawFormula::make(plant::LawFormula::Kind::negation, std::move(operands));
}

std::optional<FormulaClauses> clausesOf(const syntax::Formula& formula, const PlantPaths& names,
                                        Report& report)
{
    const auto find = [&](const syntax::Path& path) { return names.find(path, report); };
    const auto holds = FormulaTranslator(find, report).translate(formula);
    auto denied = FormulaTranslator(find, report).translate(formula, true);
    if (!holds || !denied) return std::nullopt;
    const plant::LawFormula fails = negationOf(std::move(*denied));
    const bool negated = plant::countClauses(fails) < plant::countClauses(*holds);
    auto clauses = plant::normalForm(negated ? fails : *holds, mostFormulaClauses);
    if (!clauses) {
        report.error(formula.range,
                     "the formula has more than " + std::to_string(mostFormulaClauses) +
                         " clauses in normal form",
                     "a formula of less alternatives", "ask for parts of it, one after the other");
        return std::nullopt;
    }
    return FormulaClauses{negated, std::move(*clauses)};
}

} // namespace

ReadFormula readFormula(const std::string& text, const plant::Model& model,
                        const std::string& system)
{
    SourceTexts sources;
    sources.push_back(std::make_unique<text::SourceText>("formula", text));
    ReadFormula read;
    ParsedFormula parsed = parseFormula(*sources.front());
    read.errors = std::move(parsed.errors);
    if (!parsed.formula) return read;
    constexpr std::size_t mostErrors = 100;
    Report report(sources, mostErrors);
    const PlantPaths names(model, system);
    NameChecks(names, report).check(*parsed.formula);
    if (!report.failed()) read.formula = clausesOf(*parsed.formula, names, report);
    read.errors = report.errors();
    return read;
}

} // namespace language
