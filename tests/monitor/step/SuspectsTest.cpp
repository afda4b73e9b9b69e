#include "monitor/step/Suspects.h"

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using monitor::Conflict;
using plant::VariableIndex;

// A plant of so many modes and one condition, a random family of conflicts, and what is known of the modes.
struct Family {
    Family(std::uint64_t seed, bool withFree) : random(seed)
    {
        const int modes = random.between(1, 7);
        HandMade model;
        for (int i = 0; i < modes; ++i) {
            model.mode("c" + std::to_string(i) + ".mode", {"ok", "broken!"});
        }
        model.condition("c0.out", {"0", "1"});
        active = model.activate();
        const auto& variables = active->plant->variables();
        freedom.fixed.resize(variables.size());
        freedom.free.resize(variables.size());
        for (std::size_t i = 0; i < variables.size(); ++i) {
            if (variables[i].isMode) {
                indices.push_back(static_cast<VariableIndex>(i));
                freedom.fixed[i] = random.chance(15);
                freedom.free[i] = withFree && !freedom.fixed[i] && random.chance(20);
            }
        }
        for (int i = random.between(0, 5); i > 0; --i) {
            Conflict conflict;
            for (const VariableIndex variable : indices) {
                if (random.chance(50)) {
                    conflict.push_back(variable);
                }
            }
            conflicts.push_back(conflict);
        }
    }

    bool isFixed(VariableIndex variable) const
    {
        return freedom.fixed[static_cast<std::size_t>(variable)];
    }
    bool isFree(VariableIndex variable) const
    {
        return freedom.free[static_cast<std::size_t>(variable)];
    }

    // By trying every set of modes: whether one with the variable hits all conflicts within the budget.
    std::vector<bool> byTryingAll(int faultBudget) const
    {
        std::vector<bool> result(freedom.fixed.size(), false);
        for (unsigned set = 0; set < 1u << indices.size(); ++set) {
            int faults = 0;
            bool possible = true;
            std::set<VariableIndex> members;
            for (std::size_t i = 0; i < indices.size(); ++i) {
                if ((set >> i & 1u) != 0) {
                    members.insert(indices[i]);
                    possible = possible && !isFixed(indices[i]);
                    faults += isFree(indices[i]) ? 0 : 1;
                }
            }
            const bool hitsAll =
                std::all_of(conflicts.begin(), conflicts.end(), [&](const Conflict& conflict) {
                    return std::any_of(conflict.begin(), conflict.end(),
                                       [&](VariableIndex v) { return members.count(v) != 0; });
                });
            if (possible && hitsAll && faults <= faultBudget) {
                for (const VariableIndex member : members) {
                    result[static_cast<std::size_t>(member)] = true;
                }
            }
        }
        return result;
    }

    MutedTrace muted;
    Random random;
    std::unique_ptr<ActivePlant> active;
    std::vector<VariableIndex> indices;
    std::vector<Conflict> conflicts;
    monitor::ModeFreedom freedom;
};

TEST(Suspects, AreTheMembersOfSmallHittingSets)
{
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Family family(seed, false);
        for (int budget = 0; budget <= 2; ++budget) {
            SCOPED_TRACE("budget " + std::to_string(budget));
            EXPECT_EQ(suspects(*family.active->plant, family.conflicts, family.freedom, budget),
                      family.byTryingAll(budget));
        }
    }
}

TEST(Suspects, AreNeverTooFew)
{
    for (std::uint64_t seed = 1000; seed < 1400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Family family(seed, true);
        for (int budget = 0; budget <= 4; ++budget) {
            SCOPED_TRACE("budget " + std::to_string(budget));
            const std::vector<bool> given =
                suspects(*family.active->plant, family.conflicts, family.freedom, budget);
            const std::vector<bool> expected = family.byTryingAll(budget);
            for (std::size_t i = 0; i < given.size(); ++i) {
                EXPECT_TRUE(given[i] || !expected[i]) << "variable " << i;
            }
        }
    }
}

// A conflict that a free mode can hit restricts nothing: only the others count.
TEST(Suspects, AreTheMembersOfSetsThatHitTheConflictsWithoutFreeModes)
{
    for (std::uint64_t seed = 2000; seed < 2400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Family family(seed, true);
        const std::vector<Conflict> all = family.conflicts;
        const auto last = std::remove_if(
            family.conflicts.begin(), family.conflicts.end(), [&](const Conflict& conflict) {
                return std::any_of(conflict.begin(), conflict.end(),
                                   [&](VariableIndex v) { return family.isFree(v); });
            });
        family.conflicts.erase(last, family.conflicts.end());
        for (int budget = 0; budget <= 2; ++budget) {
            SCOPED_TRACE("budget " + std::to_string(budget));
            EXPECT_EQ(suspects(*family.active->plant, all, family.freedom, budget),
                      family.byTryingAll(budget));
        }
    }
}

TEST(Suspects, AreNobodyWhereAConflictIsEmpty)
{
    Family family(1, false);
    family.conflicts = {{family.indices.front()}, {}};
    for (int budget = 0; budget <= 3; ++budget) {
        const auto given = suspects(*family.active->plant, family.conflicts, family.freedom, budget);
        EXPECT_EQ(std::count(given.begin(), given.end(), true), 0);
    }
}

} // namespace
