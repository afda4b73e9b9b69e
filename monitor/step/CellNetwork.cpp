// A law's only positive literal beside that of the mode is what it concludes, as model files and circuits write their laws; all
// laws with the same conclusion are one cell. That the laws leave nothing open, and never contradict one another, is checked by cases.
#include "monitor/step/CellNetwork.h"

#include <algorithm>

namespace monitor {

namespace {

/// Cases that are told apart, at most, to see that a cell leaves nothing open.
constexpr std::size_t mostCellCases = 10'000;

// Of a cell while the laws are read; inputs are variables.
struct DraftTerm {
    std::vector<std::pair<VariableIndex, bool>> literals;
};

struct DraftCell {
    VariableIndex mode = -1;
    AtomIndex fault = -1;
    std::vector<DraftTerm> terms[2];
    bool any() const { return !terms[0].empty() || !terms[1].empty(); }
};

bool contradict(const DraftTerm& a, const DraftTerm& b)
{
    return std::any_of(a.literals.begin(), a.literals.end(), [&](const auto& one) {
        return std::any_of(b.literals.begin(), b.literals.end(), [&](const auto& other) {
            return one.first == other.first && one.second != other.second;
        });
    });
}

// Whether some term holds in every case.
class EveryCase {
public:
    bool covered(const std::vector<DraftTerm>& terms)
    {
        if (terms.empty() || ++cases_ > mostCellCases) return false;
        const auto empty = [](const DraftTerm& term) { return term.literals.empty(); };
        if (std::any_of(terms.begin(), terms.end(), empty)) return true;
        const VariableIndex split = terms.front().literals.front().first;
        return covered(given(terms, split, false)) && covered(given(terms, split, true));
    }

private:
    static std::vector<DraftTerm> given(const std::vector<DraftTerm>& terms, VariableIndex variable,
                                        bool value)
    {
        std::vector<DraftTerm> left;
        for (const DraftTerm& term : terms) {
            DraftTerm rest;
            bool possible = true;
            for (const auto& literal : term.literals) {
                if (literal.first != variable) {
                    rest.literals.push_back(literal);
                } else {
                    possible = possible && literal.second == value;
                }
            }
            if (possible) left.push_back(std::move(rest));
        }
        return left;
    }

    std::size_t cases_ = 0;
};

bool determined(const DraftCell& cell)
{
    for (const DraftTerm& zero : cell.terms[0]) {
        for (const DraftTerm& one : cell.terms[1]) {
            if (!contradict(zero, one)) return false;
        }
    }
    std::vector<DraftTerm> all = cell.terms[0];
    all.insert(all.end(), cell.terms[1].begin(), cell.terms[1].end());
    return EveryCase().covered(all);
}

} // namespace

class CellRecognition {
public:
    explicit CellRecognition(const Plant& plant)
        : plant_(plant), drafts_(plant.variables().size()), modeOf_(plant.variables().size(), -1)
    {
    }

    std::optional<CellNetwork> network()
    {
        const bool isNetwork = readVariables() && readLaws() && eachDetermined() && order();
        return isNetwork ? std::optional(std::move(network_)) : std::nullopt;
    }

private:
    DraftCell& draft(VariableIndex variable) { return drafts_[static_cast<std::size_t>(variable)]; }

    bool readVariables()
    {
        const auto& variables = plant_.variables();
        return std::all_of(variables.begin(), variables.end(), [](const PlantVariable& variable) {
            return variable.values.size() == 2 && !variable.isCommand;
        });
    }

    bool readLaws()
    {
        for (std::size_t i = 0; i < plant_.clauseCount(); ++i) {
            const auto clause = static_cast<ClauseIndex>(i);
            if (plant_.isLaw(clause) && !readLaw(plant_.clause(clause))) return false;
        }
        return true;
    }

    bool readLaw(std::span<const PlantLiteral> literals)
    {
        AtomIndex fault = -1;
        AtomIndex conclusion = -1;
        DraftTerm term;
        for (const PlantLiteral& literal : literals) {
            const VariableIndex variable = plant_.variableOf(literal.atom);
            const bool isMode = plant_.variable(variable).isMode;
            if (literal.negated) {
                if (isMode) return false;
                term.literals.emplace_back(variable, isOne(literal.atom));
                continue;
            }
            AtomIndex& place = isMode ? fault : conclusion;
            if (place >= 0) return false;
            place = literal.atom;
        }
        if (conclusion < 0) return false;
        const VariableIndex output = plant_.variableOf(conclusion);
        DraftCell& cell = draft(output);
        if (cell.any() && cell.fault != fault) return false;
        cell.fault = fault;
        if (fault >= 0) {
            cell.mode = plant_.variableOf(fault);
            VariableIndex& owner = modeOf_[static_cast<std::size_t>(cell.mode)];
            if (owner >= 0 && owner != output) return false;
            owner = output;
        }
        cell.terms[isOne(conclusion) ? 1 : 0].push_back(std::move(term));
        return true;
    }

    bool isOne(AtomIndex value) const
    {
        return plant_.variable(plant_.variableOf(value)).values[1] == value;
    }

    bool eachDetermined() const
    {
        return std::all_of(drafts_.begin(), drafts_.end(),
                           [](const DraftCell& cell) { return !cell.any() || determined(cell); });
    }

    // Numbers the signals: sources, then outputs, each after the cell's inputs. False when cells depend on one another in a circle.
    bool order()
    {
        network_.signalOf_.assign(drafts_.size(), none);
        std::vector<VariableIndex> outputs;
        for (std::size_t i = 0; i < drafts_.size(); ++i) {
            const auto variable = static_cast<VariableIndex>(i);
            if (plant_.variable(variable).isMode) continue;
            if (drafts_[i].any()) {
                outputs.push_back(variable);
            } else {
                number(variable, network_.addSource());
            }
        }
        std::vector<bool> begun(drafts_.size(), false);
        std::vector<VariableIndex> waiting(outputs.rbegin(), outputs.rend());
        while (!waiting.empty()) {
            const VariableIndex variable = waiting.back();
            const bool returned = begun[static_cast<std::size_t>(variable)];
            if (numbered(variable)) {
                waiting.pop_back();
                continue;
            }
            begun[static_cast<std::size_t>(variable)] = true;
            const std::size_t before = waiting.size();
            for (const auto& terms : draft(variable).terms) {
                for (const DraftTerm& term : terms) {
                    for (const auto& [input, value] : term.literals) {
                        if (!numbered(input)) waiting.push_back(input);
                    }
                }
            }
            if (waiting.size() == before) {
                addCell(variable);
            } else if (returned) {
                return false;
            }
        }
        return true;
    }

    bool numbered(VariableIndex variable) const { return signal(variable) != none; }
    SignalNumber signal(VariableIndex variable) const
    {
        return network_.signalOf_[static_cast<std::size_t>(variable)];
    }
    void number(VariableIndex variable, SignalNumber signal)
    {
        network_.signalOf_[static_cast<std::size_t>(variable)] = signal;
    }

    void addCell(VariableIndex output)
    {
        const DraftCell& made = draft(output);
        CellTerms terms[2];
        for (int side = 0; side < 2; ++side) {
            for (const DraftTerm& term : made.terms[side]) {
                std::vector<SignalValue>& literals = terms[side].emplace_back();
                for (const auto& [input, value] : term.literals) {
                    literals.push_back({signal(input), value});
                }
            }
        }
        number(output, network_.addCell(made.mode, made.fault, terms[0], terms[1]));
    }

    static constexpr SignalNumber none = ~SignalNumber{0};

    const Plant& plant_;
    std::vector<DraftCell> drafts_;     ///< by variable
    std::vector<VariableIndex> modeOf_; ///< by mode: the output that it leaves open
    CellNetwork network_;
};

std::optional<CellNetwork> CellNetwork::of(const Plant& plant)
{
    return CellRecognition(plant).network();
}

SignalNumber CellNetwork::addCell(std::int32_t mode, AtomIndex fault, const CellTerms& zero,
                                  const CellTerms& one)
{
    // Of two terms that give the same value, the one with the earlier inputs rests on fewer cells.
    const auto latest = [this](const CellTerm& term) {
        SignalNumber last = 0;
        for (std::uint32_t i = term.begin; i < term.end; ++i) {
            last = std::max(last, literals_[i].signal);
        }
        return last;
    };
    Cell cell{mode, fault, {}, {}};
    for (int side = 0; side < 2; ++side) {
        cell.begin[side] = static_cast<std::uint32_t>(terms_.size());
        for (const std::vector<SignalValue>& term : side == 1 ? one : zero) {
            const auto begin = static_cast<std::uint32_t>(literals_.size());
            literals_.insert(literals_.end(), term.begin(), term.end());
            terms_.push_back({begin, static_cast<std::uint32_t>(literals_.size())});
        }
        cell.end[side] = static_cast<std::uint32_t>(terms_.size());
        std::stable_sort(terms_.begin() + cell.begin[side], terms_.end(),
                         [&](const CellTerm& a, const CellTerm& b) { return latest(a) < latest(b); });
    }
    cells_.push_back(cell);
    return outputOf(static_cast<CellNumber>(cells_.size() - 1));
}

SignalValue CellNetwork::valueOf(const Plant& plant, AtomIndex value) const
{
    const VariableIndex variable = plant.variableOf(value);
    return {signalOf_[static_cast<std::size_t>(variable)],
            plant.variable(variable).values[1] == value};
}

} // namespace monitor
