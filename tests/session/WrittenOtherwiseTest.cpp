// A plant that is written in another way is the same plant: whatever is seen, the same is said of it. Random plants, each followed
// over a few steps as it is written at first and in all other ways: with nothing cut, and every third plant with the usual settings
// as well. That is done once, plant by plant, for all tests.
#include "language/Reader.h"
#include "language/json/ModelJson.h"
#include "tests/session/FollowedText.h"
#include "tests/support/RandomPlantText.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <optional>

namespace {

using written::PlantText;
using written::Rewriting;
using written::Rewritten;
using written::Said;

constexpr int mostPlants = underSanitizers ? 15 : 1000;

// Nothing is dropped, and nothing too long ago or too improbable.
const session::Settings wide{.maxRank = 100, .keep = 100'000, .lookBack = 1000, .search = nullptr};
const session::Settings usual{};

/// A way of writing, and what of it is compared.
struct Way {
    const char* name;
    Rewriting rewrite;
    /// Only plants whose guards read commands alone. The twin of a plant takes one of two readings that contradict it together; which
    /// one depends on the order of names, and a guard may read what follows from it.
    bool guardsReadCommandsOnly = false;
    /// Without `since`, and with nothing cut only: of histories that are equally probable the one is told that comes first by name, and of
    /// hypotheses the same one is kept.
    bool changesTheOrderOfNames = false;
};

// The same without the steps since when something differs.
Said withoutSince(Said said)
{
    std::map<Said::Hypothesis, double> hypotheses;
    for (const auto& [words, probability] : said.hypotheses) {
        Said::Hypothesis shorter;
        for (const std::string& word : words) {
            shorter.insert(word.substr(0, word.find(" since ")));
        }
        hypotheses[shorter] += probability;
    }
    said.hypotheses = std::move(hypotheses);
    return said;
}

Rewritten json(const PlantText& plant, Random&)
{
    return {language::modelJson(language::readModelText("plant.itms", written::text(plant)))};
}

const std::vector<Way> ways{
    {"InAnotherOrder", written::permuted},
    {"WithTheValuesInAnotherOrder", written::valuesPermuted},
    {"WithReadingsInAnotherOrder", written::bindingsPermuted},
    {"AsContrapositives", written::contrapositive},
    {"InSeveralLaws", written::split},
    {"AsClauses", written::asClauses},
    {"WithLawsThatFollowFromTheOthers", written::withConsequences},
    {"WithSetsSpelledOut", written::spelledOut},
    {"ByTheValuesThatThereAreNot", written::asExclusions},
    {"WithGuardsByTheValuesThatThereAreNot", written::guardsTurned},
    {"WithOtherNames", written::withOtherNames, true, true},
    {"WithAConditionThatNothingMentions", written::withOpenSpare},
    {"WithAConditionThatALawFixes", written::withFixedSpare},
    {"WithAConditionThatIsAnother", written::withACopy},
    {"WithPartsInFurtherParts", written::wrapped, true, true},
    {"AsJson", json},
};

/// A plant, and what is seen of it.
struct Subject {
    std::uint64_t seed;
    PlantText plant;
    std::string text;
    std::vector<written::SeenStep> steps;

    language::ReadResult read() const { return language::readModelText("plant.itms", text); }
};

// None where the laws contradict one another.
std::optional<Subject> makeSubject(std::uint64_t seed)
{
    Random random(seed);
    written::PlantTextOptions options;
    options.misreadPercent = seed % 4 == 0 ? 15 : 0; // a history more for each of them
    Subject subject{seed, written::randomPlantText(random, options), {}, {}};
    subject.text = written::text(subject.plant);
    const language::ReadResult read = subject.read();
    if (read.model) {
        subject.steps = written::simulatedSteps(read, random.between(5, 8), random);
    }
    return subject.steps.empty() ? std::nullopt : std::optional(std::move(subject));
}

/// Of one way of writing, over all plants.
struct Comparison {
    int plants = 0;
    int differing = 0;
    std::string first; ///< difference, with the plant and what was seen
};

/// What the plants were like as they were written at first, with nothing cut.
struct Figures {
    int steps = 0;
    int faulty = 0;   ///< steps at which something may be wrong
    int doubtful = 0; ///< at which there are several hypotheses
    int cut = 0;      ///< at which something was dropped, or estimated
};

class Comparisons {
public:
    explicit Comparisons(int plants)
    {
        int made = 0;
        for (std::uint64_t seed = 0; made < plants; ++seed) {
            if (const std::optional<Subject> subject = makeSubject(seed)) {
                compare(*subject, wide, true);
                if (made++ % 3 == 0) compare(*subject, usual, false);
            }
        }
    }

    const Comparison& of(const Way& way) const { return ofWays_.at(way.name); }
    const Figures& figures() const { return figures_; }

private:
    void compare(const Subject& subject, const session::Settings& settings, bool nothingIsCut)
    {
        const std::vector<Said> said = written::followed(subject.read(), subject.steps, settings);
        if (nothingIsCut) count(said);
        for (const Way& way : ways) {
            if ((way.guardsReadCommandsOnly && written::guardsReadConditions(subject.plant)) ||
                (way.changesTheOrderOfNames && !nothingIsCut)) {
                continue;
            }
            compare(subject, way, settings, said);
        }
    }

    void compare(const Subject& subject, const Way& way, const session::Settings& settings,
                 const std::vector<Said>& before)
    {
        Comparison& result = ofWays_[way.name];
        ++result.plants;
        Random random(subject.seed);
        const Rewritten other = way.rewrite(subject.plant, random);
        language::ReadResult read = other.text.starts_with('{')
                                        ? language::readModelJson("plant.json", other.text)
                                        : language::readModelText("plant.itms", other.text);
        if (!read.model) {
            note(subject, other, read.errors.front().format(), result);
            return;
        }
        const std::vector<Said> after =
            written::followed(std::move(read), subject.steps, settings, other.names);
        for (std::size_t i = 0; i < before.size(); ++i) {
            const Said expected = written::renamed(before[i], other.names);
            const std::string difference =
                way.changesTheOrderOfNames
                    ? written::difference(withoutSince(expected), withoutSince(after[i]))
                    : written::difference(expected, after[i]);
            if (!difference.empty()) {
                note(subject, other, fmt::format("step {}:\n{}", i + 1, difference), result);
                return;
            }
        }
    }

    static void note(const Subject& subject, const Rewritten& other, const std::string& difference,
                     Comparison& result)
    {
        if (result.differing++ == 0) {
            result.first = fmt::format(
                "seed {}, {}\n{}\n{}\n{}\n", subject.seed, difference, subject.text, other.text,
                fmt::join(written::telemetryLines(subject.steps, other.names), "\n"));
        }
    }

    void count(const std::vector<Said>& steps)
    {
        for (const Said& said : steps) {
            ++figures_.steps;
            figures_.faulty += said.fault > 0.0 ? 1 : 0;
            figures_.doubtful += said.hypotheses.size() > 1 ? 1 : 0;
            figures_.cut += said.dropped > 0 || said.approximate ? 1 : 0;
        }
    }

    std::map<std::string, Comparison> ofWays_;
    Figures figures_;
};

const Comparisons& comparisons()
{
    static const Comparisons made(mostPlants);
    return made;
}

class WrittenOtherwise : public testing::TestWithParam<Way> {};

TEST_P(WrittenOtherwise, IsTheSamePlant)
{
    const Comparison& result = comparisons().of(GetParam());
    EXPECT_EQ(result.differing, 0)
        << result.differing << " of " << result.plants << " plants, the first is\n"
        << result.first;
    EXPECT_GT(result.plants, mostPlants / 4);
}

INSTANTIATE_TEST_SUITE_P(Plant, WrittenOtherwise, testing::ValuesIn(ways),
                         [](const auto& one) { return one.param.name; });

// Without faults and doubt the comparisons would tell nothing.
TEST(WrittenOtherwisePlants, HaveFaultsAndLeaveDoubt)
{
    const Figures& figures = comparisons().figures();
    EXPECT_GT(figures.steps, 5 * mostPlants);
    EXPECT_GT(figures.faulty, figures.steps / 4);
    EXPECT_GT(figures.doubtful, figures.steps / 12);
    EXPECT_EQ(figures.cut, 0);
}

} // namespace
