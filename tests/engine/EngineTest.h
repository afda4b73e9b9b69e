// What the tests of the engine share: a hand-made model, an engine over it, and one state to work on.
//
//     props("a b c");              // conditions k.a=1, k.b=1, k.c=1 of one component k
//     Clause* clause = law("a | !b");
//     begin({{"a", "false"}, {"b", "true"}});
//     EXPECT_FALSE(engine.testClause(clause, state.get(), &trajectory, step));
#pragma once

#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The records that a search returned; clears and deletes them.
class Candidates {
public:
    explicit Candidates(std::vector<ItmsRes*>* records) : records_(records) {}
    Candidates(Candidates&&) = default;
    Candidates& operator=(Candidates&&) = delete;
    ~Candidates();

    std::size_t size() const { return records_->size(); }
    ItmsRes* operator[](std::size_t index) const { return records_->at(index); }
    auto begin() const { return records_->begin(); }
    auto end() const { return records_->end(); }

private:
    std::unique_ptr<std::vector<ItmsRes*>> records_;
};

/// Clears and deletes the record.
void release(ItmsRes* record);

struct RecordRelease {
    void operator()(ItmsRes* record) const { release(record); }
};
using OwnedRecord = std::unique_ptr<ItmsRes, RecordRelease>;

/// The records of an agenda from the top down, which the agenda loses.
std::vector<OwnedRecord> drain(std::stack<ItmsRes*>& agenda);

/// A label by name: see EngineTest::atom for the names.
using Labels = std::map<std::string, std::string>;

/// The atom a name stands for: `a` for the atom k.a=1, a full identifier for itself.
std::string atomId(const std::string& name);

/// The element that the state has for the name; fails the test (and is null) when there is none.
TrajEl* elementOf(State* state, const std::string& name);

/// The clauses of a queue, front first; the queue stays as it is.
std::vector<Clause*> listed(const std::queue<Clause*>& queue);

/// The names of a map's elements in their order, those of atoms k.NAME=1 cut down to NAME.
std::vector<std::string> names(const ElMap& map);
std::vector<std::string> names(const std::vector<TrajEl*>& els);

/// How often `part` stands in `text`.
std::size_t occurrences(const std::string& text, const std::string& part);

/// The lines of `text` that begin with `start`.
std::vector<std::string> linesThatBegin(const std::string& text, const std::string& start);

/// The line after each line that equals `line`.
std::vector<std::string> linesAfter(const std::string& text, const std::string& line);

/// An address as the trace prints it.
std::string printed(const void* pointer);

class EngineTest : public testing::Test {
protected:
    EngineTest();
    ~EngineTest() override;

    /// Conditions of the component `k`, each a variable with the one value 1, separated by blanks. A `!` after a
    /// name makes the value a fault.
    void props(const std::string& namesOfConditions);
    /// A variable with the one value 1 in a component of its own, which nothing instantiates before it is met.
    Atom* remote(const std::string& component);
    /// A clause over names, "a | !b".
    Clause* law(const std::string& text, bool global = true);
    Atom* atom(const std::string& name);

    /// Makes the state, with the elements of `k` (those of `comps`, if there are any), labelled as told, else
    /// "unknown".
    void begin(const Labels& labels = {}, const std::vector<Comp*>& comps = {});
    TrajEl* el(const std::string& name) { return elementOf(state.get(), name); }
    bool hasElement(const std::string& name);
    ElMap mapOf(const std::vector<std::string>& namesOfElements);

    struct Options {
        bool typeRules = false;
        double maxRank = 10.0;
        bool adding = false;
        std::vector<ItmsRes*>* results = nullptr;
    };
    /// Hands the state to the engine with the propositions, inserted in the given order.
    Candidates add(const std::vector<std::pair<bool, std::string>>& propositions,
                   const Options& options);
    Candidates add(const std::vector<std::pair<bool, std::string>>& propositions);
    /// The same; the state stays with the test, which expects the call to return early.
    Candidates addInVain(const std::vector<std::pair<bool, std::string>>& propositions,
                         const Options& options);

    TestModel model;
    itms engine;
    Trajectory trajectory;
    const int step = 0;
    CapturedTrace trace;
    Comp* k;
    std::unique_ptr<State> state;

private:
    std::vector<ItmsRes*>* call(const std::vector<std::pair<bool, std::string>>& propositions,
                                const Options& options, State* on);
};
