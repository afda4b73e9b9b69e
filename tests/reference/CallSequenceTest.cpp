// The engine's interface under random calls: whatever was called before, it does what the plain engine does, and several models in
// registries of their own do not disturb one another. Sanitizers watch over who owns what.
#include "tests/reference/CallSequence.h"

#include "model/DataManager.h"
#include "model/Registry.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t sequencesPerBlock = fewerUnderSanitizers(200);
constexpr std::size_t callsPerSequence = 40;

class CallSequences : public ::testing::TestWithParam<std::uint64_t> {
protected:
    std::uint64_t first() const { return 7'000'000 + GetParam() * sequencesPerBlock; }
};

/// An engine with a mistake that shows in one kind of call.
class MistakenEngine : public PlainEngine {
public:
    TrajEl* getUnknown(Clause*, State*, Trajectory*, const int&) { return nullptr; }
};

/// A limit that is met after so much work.
class Patience : public SearchWatch {
public:
    explicit Patience(std::uint64_t work) : left_(work) {}
    SearchLimit take(std::uint64_t work) override
    {
        left_ -= std::min(left_, work);
        return left_ == 0 ? SearchLimit::work : SearchLimit::none;
    }

private:
    std::uint64_t left_;
};

TEST_P(CallSequences, DoWhatThePlainEngineDoes)
{
    std::uint64_t leftOut = 0;
    for (std::uint64_t seed = first(); seed < first() + sequencesPerBlock; ++seed) {
        const CallSequence drawn = drawCalls(seed, callsPerSequence);
        const auto difference = differenceOf<PlainEngine, itms>(drawn);
        leftOut += difference ? 0 : 1;
        if (!difference || difference->empty()) continue;
        const CallSequence shorter = shrunk(drawn, [](const CallSequence& sequence) {
            const auto still = differenceOf<PlainEngine, itms>(sequence);
            return still && !still->empty();
        });
        FAIL() << "seed " << seed << ", " << describe<PlainEngine>(shorter)
               << *differenceOf<PlainEngine, itms>(shorter);
    }
    RecordProperty("sequencesLeftOut", static_cast<int>(leftOut));
    EXPECT_LT(leftOut, sequencesPerBlock / 2) << "too many searches were too large to be compared";
}

// Two models take turns, call by call; each is as it is alone.
TEST_P(CallSequences, OfModelsInRegistriesOfTheirOwnDoNotMeet)
{
    for (std::uint64_t seed = first(); seed < first() + sequencesPerBlock; seed += 8) {
        const CallSequence one = drawCalls(seed, callsPerSequence);
        const CallSequence other = drawCalls(seed + 1'000'000, callsPerSequence);
        Observed oneAlone;
        Observed otherAlone;
        try { // the plain engine tells which searches are small enough
            replay<PlainEngine>(one, true);
            replay<PlainEngine>(other, true);
            oneAlone = replay<itms>(one, true);
            otherAlone = replay<itms>(other, true);
        } catch (const SearchTooLarge&) {
            continue;
        }
        Registry first;
        Registry second;
        first.use();
        auto bench = std::make_unique<Bench<itms>>(one.model, true);
        second.use();
        auto otherBench = std::make_unique<Bench<itms>>(other.model, true);
        for (std::size_t i = 0; i < callsPerSequence; ++i) {
            first.use();
            if (!isEmpty(*bench)) make(one.calls[i], *bench);
            second.use();
            if (!isEmpty(*otherBench)) make(other.calls[i], *otherBench);
        }
        const Observed otherSeen = std::move(otherBench->run.observed);
        otherBench.reset();
        first.use();
        const Observed seen = std::move(bench->run.observed);
        bench.reset();
        Registry::useFirst();
        ASSERT_EQ(firstDifference(oneAlone, seen, false), "") << "seed " << seed;
        ASSERT_EQ(firstDifference(otherAlone, otherSeen, false), "") << "seed " << seed;
    }
}

// Whatever cuts a search: it says so, keeps to its limits, and loses nothing that it held.
TEST_P(CallSequences, MayBeCutAnywhere)
{
    std::size_t searches = 0;
    std::size_t cut = 0;
    for (std::uint64_t seed = first(); seed < first() + sequencesPerBlock; ++seed) {
        const CallSequence drawn = drawCalls(seed, callsPerSequence);
        Bench<itms> bench(drawn.model, true);
        if (isEmpty(bench)) continue;
        Random limits(seed);
        for (const Call& call : drawn.calls) {
            Patience patience(limits.below(2000));
            const std::atomic<bool> stop = limits.chance(5);
            SearchLimits& set = DataManager::searchLimits;
            set.maxRecords = limits.below(60);
            set.maxCandidates = limits.below(8);
            set.watch = limits.chance(50) ? &patience : nullptr;
            set.stop = &stop;
            DataManager::searchWork = SearchWork{};
            make(call, bench);
            const SearchWork& work = DataManager::searchWork;
            if (!work.begun) continue;
            ++searches;
            ASSERT_LE(work.records, set.maxRecords) << "seed " << seed;
            ASSERT_LE(work.candidates, set.maxCandidates) << "seed " << seed;
            cut += work.partial ? 1 : 0;
            ASSERT_EQ(work.partial, work.limit != SearchLimit::none) << "seed " << seed;
            set = SearchLimits{};
        }
    }
    EXPECT_GT(searches, cut);
    EXPECT_GT(cut, sequencesPerBlock / 4);
}

INSTANTIATE_TEST_SUITE_P(Seeds, CallSequences,
                         ::testing::Range(std::uint64_t{0}, std::uint64_t{10}));

TEST(CallSequenceShrinking, LeavesTheCallThatShowsAMistake)
{
    const auto fails = [](const CallSequence& sequence) {
        const auto difference = differenceOf<PlainEngine, MistakenEngine>(sequence);
        return difference && !difference->empty();
    };
    std::size_t found = 0;
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        const CallSequence drawn = drawCalls(seed, callsPerSequence);
        if (!fails(drawn)) continue;
        const CallSequence shorter = shrunk(drawn, fails);
        EXPECT_TRUE(fails(shorter));
        EXPECT_LE(shorter.calls.size(), 2U) << "seed " << seed;
        EXPECT_NE(describe<PlainEngine>(shorter).find("getUnknown"), std::string::npos);
        ++found;
    }
    EXPECT_GT(found, 2U);
}

} // namespace
