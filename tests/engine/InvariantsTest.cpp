// What holds after any operation, on random models that start fully labelled with no clause violated.
#include "tests/reference/Bench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

constexpr std::uint64_t seeds = 600;

bool violated(itms& engine, Clause* clause, State* state, Trajectory* traj)
{
    return !engine.testClause(clause, state, traj, 0) &&
           engine.getUnknown(clause, state, traj, 0) == nullptr;
}

bool isOwn(const TrajEl* el, const State* state)
{
    const auto found = state->elements->find(el->getId());
    return found != state->elements->end() && found->second == el;
}

// The elements among `els` and the dependents in the state that the state does not hold itself.
std::string strangers(const State* state, const std::vector<TrajEl*>& els)
{
    std::vector<TrajEl*> all = els;
    for (const auto& [id, el] : *state->elements) {
        if (el != nullptr) {
            all.insert(all.end(), el->dependents->begin(), el->dependents->end());
        }
    }
    std::string out;
    for (const TrajEl* el : all) {
        out += isOwn(el, state) ? "" : el->atom->id + " ";
    }
    return out;
}

std::vector<TrajEl*> heldBy(const ItmsRes& record)
{
    std::vector<TrajEl*> els = *record.retracted;
    for (const ElMap* map : {record.already_changed, record.focus}) {
        for (const auto& [id, el] : *map) {
            els.push_back(el);
        }
    }
    return els;
}

// One step on a sound model: the propositions' elements were "true" or "false" and no clause was violated.
struct SoundStep {
    Run<itms> run;
    RandomModel& model = run.model;
    Trajectory* traj = run.model.trajectory.get();
    Records found;

    explicit SoundStep(std::uint64_t seed) : run(seed, true, true)
    {
        run.engine.rtInit();
        model.predict(0);
        State* state = randomState(model, 0);
        state->wkstRank = 0.0;
        SignedEls props = randomPropositions(model, state);
        DataManager::searchLimits.maxRecords = 200;
        const bool typeRules = run.random.chance(30);
        const std::size_t entries = DataManager::itmsBmkEntries.size();
        run.engine.addPropositions(&props, nullptr, state, &found.list, typeRules, 3.0, 0.0, traj,
                                   0, false);
        if (DataManager::itmsBmkEntries.size() == entries) {
            delete state;
        }
    }
};

TEST(Invariants, ASolutionHoldsNoElementButItsOwn)
{
    std::size_t solutions = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SoundStep step(seed);
        for (const ItmsRes* record : step.found.list) {
            ++solutions;
            ASSERT_EQ(strangers(record->state, heldBy(*record)), "") << "seed " << seed;
        }
    }
    EXPECT_GT(solutions, seeds / 4);
}

TEST(Invariants, ASolutionViolatesNoClauseOfAChangedElement)
{
    std::size_t searched = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SoundStep step(seed);
        searched += DataManager::searchWork.flips > 0 ? 1 : 0;
        for (const ItmsRes* record : step.found.list) {
            for (const auto& [id, el] : *record->already_changed) {
                for (Clause* clause : *el->atom->clauses) {
                    ASSERT_FALSE(violated(step.run.engine, clause, record->state, step.traj))
                        << "seed " << seed << " element " << id << " clause "
                        << step.model.nameOf(clause);
                }
            }
        }
    }
    EXPECT_GT(searched, seeds / 8);
}

// A clause without a decided element can only be violated by what propagation relabelled after a retraction.
TEST(Invariants, WhereOnlyDecisionsChangedLabelsASolutionViolatesNoClauseAtAll)
{
    std::size_t checked = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SoundStep step(seed);
        for (const ItmsRes* record : step.found.list) {
            bool onlyDecisions = true;
            for (const auto& [id, el] : *record->state->elements) {
                const char* before = step.model.holds(el->atom) ? "true" : "false";
                onlyDecisions = onlyDecisions &&
                                (el->label == before || record->already_changed->count(id) > 0);
            }
            if (!onlyDecisions) {
                continue;
            }
            ++checked;
            for (Clause* clause : step.model.clauses) {
                ASSERT_FALSE(violated(step.run.engine, clause, record->state, step.traj))
                    << "seed " << seed << " clause " << step.model.nameOf(clause);
            }
        }
    }
    EXPECT_GT(checked, seeds / 4);
}

TEST(Invariants, AFlippedElementIsADependentOfTheOthersInTheConflict)
{
    std::size_t children = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        Bench<itms> bench(seed, true);
        if (bench.model.clauses.empty()) {
            continue;
        }
        ItmsRes* parent = bench.record();
        std::set<std::string> decided;
        for (const auto& [id, el] : *parent->already_changed) {
            decided.insert(id);
        }
        Clause* conflict = bench.clause();
        std::stack<ItmsRes*> agenda;
        if (ItmsRes* first = bench.engine.propagateThroughConflict(conflict, parent, &agenda, false,
                                                                   3.0, bench.traj, bench.time)) {
            agenda.push(first);
        }
        for (; !agenda.empty(); agenda.pop()) {
            ItmsRes* child = agenda.top();
            ++children;
            for (const auto& [id, el] : *child->already_changed) {
                if (decided.contains(id) || el->support != conflict) {
                    continue;
                }
                for (const auto& [negated, atom] : *conflict->literals) {
                    TrajEl* other = (*child->state->elements)[atom->getId()];
                    const bool retracted = bench.engine.inVector(other, child->retracted);
                    ASSERT_TRUE(other == el || retracted ||
                                bench.engine.inVector(el, other->dependents))
                        << "seed " << seed << " " << id << " of " << atom->id;
                }
            }
            discard(child);
        }
    }
    EXPECT_GT(children, seeds / 8);
}

// Counted anew from the supports: an element once for each literal of another atom in its support.
TEST(Invariants, AfterAnySupportsTheDependentsAreThoseThatTheSupportsImply)
{
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        Bench<itms> bench(seed, true);
        if (bench.model.clauses.empty()) {
            continue;
        }
        std::unique_ptr<State> state(new State);
        for (Comp* comp : bench.model.comps) {
            bench.traj->addComp(comp, state.get(), bench.time, true, false);
        }
        for (int i = 0; i < 20; ++i) {
            Clause* clause = bench.clause();
            TrajEl* el = randomElement(bench.model, state.get());
            bench.engine.setSupport(clause, el, state.get(), bench.traj, bench.time);
        }
        std::map<std::string, std::multiset<std::string>> expected;
        std::map<std::string, std::multiset<std::string>> seen;
        for (const auto& [id, el] : *state->elements) {
            for (const TrajEl* dependent : *el->dependents) {
                seen[id].insert(dependent->atom->id);
            }
            if (el->support == nullptr) {
                continue;
            }
            for (const auto& [negated, atom] : *el->support->literals) {
                if (atom != el->atom) {
                    expected[atom->id].insert(el->atom->id);
                }
            }
        }
        ASSERT_EQ(seen, expected) << "seed " << seed;
    }
}

TEST(Invariants, WhatIsRetractedIsOpenAndSupportsNothing)
{
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        Bench<itms> bench(seed, true);
        if (bench.model.atoms.empty()) {
            continue;
        }
        for (int i = 0; i < 5; ++i) {
            TrajEl* el = bench.element();
            std::vector<TrajEl*> out;
            bench.engine.deleteClause(el, &out, bench.state(), bench.traj, bench.time);
            ASSERT_EQ(out.front(), el) << "seed " << seed;
            ASSERT_EQ(std::set<TrajEl*>(out.begin(), out.end()).size(), out.size());
            for (const TrajEl* each : out) {
                ASSERT_EQ(each->label, "unknown") << "seed " << seed;
                ASSERT_EQ(each->support, nullptr) << "seed " << seed;
                ASSERT_EQ(each->propagationNumber, 0) << "seed " << seed;
                ASSERT_TRUE(each->dependents->empty()) << "seed " << seed;
            }
            ASSERT_EQ(strangers(bench.state(), out), "") << "seed " << seed;
        }
    }
}

// Where a dependent's support still held when its turn came, a later retraction may have taken that away, but
// then that retraction met it again.
TEST(Invariants, ARetractionLeavesNoDependentOnWhatItRetracted)
{
    std::size_t retracted = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        RandomModel model(seed, true);
        Capture capture(true);
        itms engine;
        engine.rtInit();
        if (model.atoms.empty()) {
            continue;
        }
        model.predict(0);
        State state;
        for (Comp* comp : model.comps) {
            model.trajectory->addComp(comp, &state, 0, true, false);
        }
        for (Clause* clause : model.clauses) {
            TrajEl* el = (*state.elements)[clause->literals->begin()->second->getId()];
            engine.setSupport(clause, el, &state, model.trajectory.get(), 0);
        }
        std::vector<TrajEl*> out;
        engine.deleteClause(randomElement(model, &state), &out, &state, model.trajectory.get(), 0);
        retracted += out.size() - 1;
        for (const auto& [id, el] : *state.elements) {
            if (el->support == nullptr) {
                continue;
            }
            const bool onRetracted = std::any_of(
                el->support->literals->begin(), el->support->literals->end(), [&](const auto& l) {
                    TrajEl* other = (*state.elements)[l.second->getId()];
                    return other != el && engine.inVector(other, &out);
                });
            ASSERT_TRUE(!onRetracted ||
                        engine.testClause(el->support, &state, model.trajectory.get(), 0))
                << "seed " << seed << " " << id;
        }
    }
    EXPECT_GT(retracted, seeds / 10);
}

} // namespace
