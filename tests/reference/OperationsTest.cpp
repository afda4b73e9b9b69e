#include "tests/reference/EvaluationOperations.h"
#include "tests/reference/ProbabilityOperations.h"
#include "tests/reference/RepairOperations.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t operationsPerBlock = fewerUnderSanitizers(200);
constexpr int operationsPerSeed = 30;

template <class Table, class Engine> void tryOne(Bench<Engine>& bench)
{
    static constexpr auto table = Table::all();
    table[bench.random.below(table.size())](bench);
}

// Tries operations on one model, some to look, some to change what the next ones see.
template <class Engine> Observed tryOperations(std::uint64_t seed, bool muted = false)
{
    Bench<Engine> bench(seed, muted);
    if (bench.model.atoms.empty() || bench.model.clauses.empty()) {
        return std::move(bench.run.observed);
    }
    for (int i = 0; i < operationsPerSeed; ++i) {
        if (bench.random.chance(8)) {
            bench.renewState();
        }
        switch (bench.random.below(3)) {
        case 0: tryOne<EvaluationOperations<Engine>>(bench); break;
        case 1: tryOne<RepairOperations<Engine>>(bench); break;
        default: tryOne<ProbabilityOperations<Engine>>(bench);
        }
    }
    return std::move(bench.run.observed);
}

class OperationsOverSeeds : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(OperationsOverSeeds, EachDoesWhatThePlainOneDoes)
{
    const std::uint64_t first = 1000000 + GetParam() * operationsPerBlock;
    std::uint64_t leftOut = 0;
    for (std::uint64_t seed = first; seed < first + operationsPerBlock; ++seed) {
        Observed expected;
        try {
            expected = tryOperations<PlainEngine>(seed);
        } catch (const SearchTooLarge&) {
            ++leftOut;
            continue;
        }
        const Observed seen = tryOperations<itms>(seed);
        const std::string difference = firstDifference(expected, seen);
        ASSERT_TRUE(difference.empty()) << "seed " << seed << ": " << difference;
    }
    RecordProperty("seedsLeftOut", static_cast<int>(leftOut));
    EXPECT_LT(leftOut, operationsPerBlock / 4) << "too many searches were too large to be compared";
}

TEST_P(OperationsOverSeeds, AMutedTraceChangesNoResult)
{
    const std::uint64_t first = 1000000 + GetParam() * operationsPerBlock;
    for (std::uint64_t seed = first; seed < first + operationsPerBlock; seed += 4) {
        try {
            tryOperations<PlainEngine>(seed, true);
        } catch (const SearchTooLarge&) {
            continue;
        }
        const Observed traced = tryOperations<itms>(seed);
        const Observed muted = tryOperations<itms>(seed, true);
        const std::string difference = firstDifference(traced, muted, false);
        ASSERT_TRUE(difference.empty()) << "seed " << seed << ": " << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, OperationsOverSeeds,
                         ::testing::Range(std::uint64_t{0}, std::uint64_t{10}));

} // namespace
