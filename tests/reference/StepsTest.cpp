#include "tests/reference/Steps.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t seedsPerBlock = fewerUnderSanitizers(400);

class StepsOverSeeds : public ::testing::TestWithParam<std::uint64_t> {};

// Runs every seed of the block with the plain engine, and with the engine where the plain one came to an end.
TEST_P(StepsOverSeeds, TheEngineDoesWhatThePlainOneDoes)
{
    const std::uint64_t first = GetParam() * seedsPerBlock;
    std::uint64_t leftOut = 0;
    for (std::uint64_t seed = first; seed < first + seedsPerBlock; ++seed) {
        Observed expected;
        try {
            expected = Steps<PlainEngine>(seed).watch();
        } catch (const SearchTooLarge&) {
            ++leftOut;
            continue;
        }
        const Observed seen = Steps<itms>(seed).watch();
        const std::string difference = firstDifference(expected, seen);
        ASSERT_TRUE(difference.empty()) << "seed " << seed << ": " << difference;
    }
    RecordProperty("seedsLeftOut", static_cast<int>(leftOut));
    EXPECT_LT(leftOut, seedsPerBlock / 4) << "too many searches were too large to be compared";
}

TEST_P(StepsOverSeeds, AMutedTraceChangesNoResult)
{
    const std::uint64_t first = GetParam() * seedsPerBlock;
    for (std::uint64_t seed = first; seed < first + seedsPerBlock; seed += 4) {
        try {
            Steps<PlainEngine>(seed, true).watch();
        } catch (const SearchTooLarge&) {
            continue;
        }
        const Observed traced = Steps<itms>(seed).watch();
        const Observed muted = Steps<itms>(seed, true).watch();
        const std::string difference = firstDifference(traced, muted, false);
        ASSERT_TRUE(difference.empty()) << "seed " << seed << ": " << difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, StepsOverSeeds,
                         ::testing::Range(std::uint64_t{0}, std::uint64_t{10}));

} // namespace
