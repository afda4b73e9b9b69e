#include "tests/engine/ExpansionTest.h"

#include <algorithm>

void ExpansionTest::expand(Clause* conflict, const Rules& rules)
{
    auto* parent = new ItmsRes(state.release());
    for (const std::string& name : rules.decided) {
        TrajEl* element = elementOf(parent->state, name);
        (*parent->already_changed)[element->getId()] = element;
    }
    for (Clause* open : rules.open) {
        parent->constraints->push(open);
    }
    std::stack<ItmsRes*> agenda;
    trace.take();
    first.reset(engine.propagateThroughConflict(conflict, parent, &agenda, rules.typeRules,
                                                rules.maxRank, &trajectory, step));
    text = trace.take();
    others = drain(agenda);
    std::reverse(others.begin(), others.end());
}

std::vector<std::string> ExpansionTest::candidates() const
{
    const std::size_t begin = text.find("not_unknown's size");
    const std::size_t end = text.find("[propagateThroughConflict] --> beginning propagation");
    std::vector<std::string> names;
    if (end == std::string::npos) {
        return names;
    }
    const std::string list = text.substr(begin, end - begin);
    for (std::size_t at = list.find(" -- "); at != std::string::npos;
         at = list.find(" -- ", at + 1)) {
        names.push_back(list.substr(at + 4, list.find('\n', at) - at - 4));
    }
    return names;
}

bool ExpansionTest::isCandidate(const std::string& name) const
{
    const std::vector<std::string> all = candidates();
    return std::find(all.begin(), all.end(), atomId(name)) != all.end();
}

std::vector<std::string> ExpansionTest::decided(const OwnedRecord& child)
{
    std::vector<std::string> all = names(*child->already_changed);
    std::sort(all.begin(), all.end());
    return all;
}
