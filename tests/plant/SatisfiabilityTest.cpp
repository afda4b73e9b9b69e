// The search for values that satisfy clauses, compared with trying all values.
#include "plant/Satisfiability.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace {

using plant::Satisfiability;
using Clauses = std::vector<std::vector<Satisfiability::Literal>>;

bool satisfiable(const Clauses& clauses, std::size_t variables)
{
    for (std::size_t values = 0; values < std::size_t{1} << variables; ++values) {
        bool all = true;
        for (const auto& clause : clauses) {
            bool some = false;
            for (const Satisfiability::Literal literal : clause) {
                some = some || ((values >> (literal / 2)) & 1U) != literal % 2;
            }
            all = all && some;
        }
        if (all) return true;
    }
    return false;
}

Clauses randomClauses(std::mt19937& random, std::size_t variables)
{
    Clauses clauses(variables * 2 + random() % (variables * 4));
    for (auto& clause : clauses) {
        clause.resize(1 + random() % 3 + random() % 2);
        for (auto& literal : clause) {
            literal = static_cast<Satisfiability::Literal>(random() % (2 * variables));
        }
        std::sort(clause.begin(), clause.end());
        clause.erase(std::unique(clause.begin(), clause.end()), clause.end());
    }
    return clauses;
}

TEST(SatisfiabilityTest, AgreesWithTryingAllValues)
{
    constexpr std::size_t variables = 7;
    std::size_t yes = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        const Clauses clauses = randomClauses(random, variables);
        Satisfiability solver(variables);
        for (std::size_t i = 0; i < clauses.size(); ++i) {
            solver.add(clauses[i], static_cast<std::uint32_t>(i));
        }
        const bool expected = satisfiable(clauses, variables);
        yes += expected ? 1 : 0;
        ASSERT_EQ(solver.solve(100000), expected ? Satisfiability::Answer::satisfiable
                                                 : Satisfiability::Answer::unsatisfiable)
            << "seed " << seed;
        if (expected) continue;
        Clauses core;
        for (const std::size_t origin : solver.core()) {
            core.push_back(clauses[origin]);
        }
        ASSERT_FALSE(satisfiable(core, variables)) << "seed " << seed;
    }
    EXPECT_GT(yes, 300U);
    EXPECT_LT(yes, 2700U);
}

TEST(SatisfiabilityTest, BlamesOnlyWhatLedToTheConflict)
{
    Satisfiability solver(3);
    solver.add({0}, 10);
    solver.add({1, 2}, 20);
    solver.add({4, 5}, 30);
    solver.add({3}, 40);
    EXPECT_EQ(solver.solve(10), Satisfiability::Answer::unsatisfiable);
    EXPECT_THAT(solver.core(), testing::ElementsAre(10, 20, 40));
}

TEST(SatisfiabilityTest, OfAnEmptyClauseIsNone)
{
    Satisfiability solver(1);
    solver.add({}, 5);
    EXPECT_EQ(solver.solve(10), Satisfiability::Answer::unsatisfiable);
    EXPECT_THAT(solver.core(), testing::ElementsAre(5));
}

// Five pigeons in four holes: more conflicts than the budget.
TEST(SatisfiabilityTest, SaysSoWhenItsBudgetIsUsedUp)
{
    const auto in = [](std::uint32_t pigeon, std::uint32_t hole) { return 2 * (pigeon * 4 + hole); };
    Satisfiability solver(20);
    for (std::uint32_t pigeon = 0; pigeon < 5; ++pigeon) {
        solver.add({in(pigeon, 0), in(pigeon, 1), in(pigeon, 2), in(pigeon, 3)}, 0);
        for (std::uint32_t other = 0; other < pigeon; ++other) {
            for (std::uint32_t hole = 0; hole < 4; ++hole) {
                solver.add({in(pigeon, hole) + 1, in(other, hole) + 1}, 1);
            }
        }
    }
    EXPECT_EQ(solver.solve(3), Satisfiability::Answer::unknown);
}

} // namespace
