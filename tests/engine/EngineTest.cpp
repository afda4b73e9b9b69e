#include "tests/engine/EngineTest.h"

#include <sstream>

Candidates::~Candidates()
{
    if (records_) {
        for (ItmsRes* record : *records_) {
            release(record);
        }
    }
}

void release(ItmsRes* record)
{
    record->clear();
    delete record;
}

std::vector<OwnedRecord> drain(std::stack<ItmsRes*>& agenda)
{
    std::vector<OwnedRecord> records;
    for (; !agenda.empty(); agenda.pop()) {
        records.emplace_back(agenda.top());
    }
    return records;
}

std::string atomId(const std::string& name)
{
    return name.find('.') == std::string::npos ? "k." + name + "=1" : name;
}

TrajEl* elementOf(State* state, const std::string& name)
{
    const auto found = state->elements->find(atomId(name).c_str());
    if (found == state->elements->end() || !found->second) {
        ADD_FAILURE() << "the state has no element " << name;
        return nullptr;
    }
    return found->second;
}

std::vector<Clause*> listed(const std::queue<Clause*>& queue)
{
    std::vector<Clause*> clauses;
    for (std::queue<Clause*> rest = queue; !rest.empty(); rest.pop()) {
        clauses.push_back(rest.front());
    }
    return clauses;
}

namespace {

std::string shortName(const TrajEl& el)
{
    const std::string id = el.getId();
    return id == "k." + el.getStateVar()->name + "=1" ? el.getStateVar()->name : id;
}

} // namespace

std::vector<std::string> names(const ElMap& map)
{
    std::vector<std::string> result;
    for (const auto& [id, el] : map) {
        result.push_back(shortName(*el));
    }
    return result;
}

std::vector<std::string> names(const std::vector<TrajEl*>& els)
{
    std::vector<std::string> result;
    for (const TrajEl* el : els) {
        result.push_back(shortName(*el));
    }
    return result;
}

std::size_t occurrences(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

std::vector<std::string> linesThatBegin(const std::string& text, const std::string& start)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind(start, 0) == 0) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<std::string> linesAfter(const std::string& text, const std::string& line)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    bool next = false;
    for (std::string read; std::getline(in, read);) {
        if (next) {
            lines.push_back(read);
        }
        next = read == line;
    }
    return lines;
}

std::string printed(const void* pointer)
{
    std::ostringstream out;
    out << pointer;
    return out.str();
}

EngineTest::EngineTest() : k(model.comp("k")) {}

EngineTest::~EngineTest() = default;

void EngineTest::props(const std::string& namesOfConditions)
{
    std::istringstream words(namesOfConditions);
    for (std::string name; words >> name;) {
        if (name.back() == '!') {
            name.pop_back();
            model.variable(k, name, "Cond", {"1!"});
        } else {
            model.variable(k, name, "Cond", {"1"});
        }
    }
}

Atom* EngineTest::remote(const std::string& component)
{
    return model.variable(model.comp(component), "x", "Cond", {"1"})->atomLinks->front();
}

Clause* EngineTest::law(const std::string& text, bool global)
{
    std::vector<TestModel::Literal> literals;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word != "|") {
            const bool negated = word.front() == '!';
            literals.push_back({negated, atom(negated ? word.substr(1) : word)});
        }
    }
    return model.clause(literals, global);
}

Atom* EngineTest::atom(const std::string& name)
{
    return model.atom(atomId(name));
}

void EngineTest::begin(const Labels& labels, const std::vector<Comp*>& comps)
{
    state.reset(model.state(comps.empty() ? std::vector<Comp*>{k} : comps));
    for (const auto& [name, label] : labels) {
        el(name)->setLabel(label);
    }
}

bool EngineTest::hasElement(const std::string& name)
{
    return state->elements->count(atomId(name).c_str()) != 0;
}

ElMap EngineTest::mapOf(const std::vector<std::string>& namesOfElements)
{
    ElMap map;
    for (const std::string& name : namesOfElements) {
        map[el(name)->getId()] = el(name);
    }
    return map;
}

Candidates EngineTest::add(const std::vector<std::pair<bool, std::string>>& propositions,
                           const Options& options)
{
    State* handed = state.get();
    auto* found = call(propositions, options, handed);
    state.release();
    return Candidates(found);
}

Candidates EngineTest::add(const std::vector<std::pair<bool, std::string>>& propositions)
{
    return add(propositions, Options{});
}

Candidates EngineTest::addInVain(const std::vector<std::pair<bool, std::string>>& propositions,
                                 const Options& options)
{
    return Candidates(call(propositions, options, state.get()));
}

std::vector<ItmsRes*>* EngineTest::call(const std::vector<std::pair<bool, std::string>>& propositions,
                                        const Options& options, State* on)
{
    SignedEls signedEls;
    for (const auto& [value, name] : propositions) {
        signedEls.insert({value, elementOf(on, name)});
    }
    return engine.addPropositions(&signedEls, nullptr, on, options.results, options.typeRules,
                                  options.maxRank, 0.0, &trajectory, step, options.adding);
}
