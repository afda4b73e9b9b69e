#include "text/NearestName.h"
#include "tests/reference/Random.h"

#include <gtest/gtest.h>

#include <cctype>

namespace {

using text::editDistance;
using text::nearestName;

// By the definition: the cheapest way to treat the last characters of both.
std::size_t plainDistance(const std::string& a, const std::string& b)
{
    if (a.empty() || b.empty()) return a.size() + b.size();
    const auto same = [](char x, char y) { return std::tolower(x) == std::tolower(y); };
    const std::string shorterA = a.substr(0, a.size() - 1);
    const std::string shorterB = b.substr(0, b.size() - 1);
    std::size_t best = plainDistance(shorterA, shorterB) + (same(a.back(), b.back()) ? 0 : 1);
    best = std::min(best, plainDistance(shorterA, b) + 1);
    best = std::min(best, plainDistance(a, shorterB) + 1);
    if (a.size() > 1 && b.size() > 1 && same(a.back(), shorterB.back()) &&
        same(shorterA.back(), b.back())) {
        best =
            std::min(best, plainDistance(a.substr(0, a.size() - 2), b.substr(0, b.size() - 2)) + 1);
    }
    return best;
}

std::string randomWord(Random& random)
{
    std::string word;
    for (int i = random.between(0, 6); i > 0; --i) {
        word += random.pick(std::vector<char>{'a', 'b', 'A', 'c'});
    }
    return word;
}

TEST(EditDistance, CountsEachKindOfChangeAsOne)
{
    EXPECT_EQ(editDistance("nand", "nand", 3), 0U);
    EXPECT_EQ(editDistance("nand", "nanda", 3), 1U);
    EXPECT_EQ(editDistance("nand", "nnd", 3), 1U);
    EXPECT_EQ(editDistance("nand", "nend", 3), 1U);
    EXPECT_EQ(editDistance("nand", "nadn", 3), 1U);
    EXPECT_EQ(editDistance("", "abc", 3), 3U);
    EXPECT_EQ(editDistance("", "", 0), 0U);
}

TEST(EditDistance, DoesNotCountLetterCase)
{
    EXPECT_EQ(editDistance("INPUT", "input", 0), 0U);
}

TEST(EditDistance, IsOneMoreThanTheLimitBeyondIt)
{
    EXPECT_EQ(editDistance("abcdef", "uvwxyz", 2), 3U);
    EXPECT_EQ(editDistance("a", "abcdef", 2), 3U);
    EXPECT_EQ(editDistance("a", "b", 0), 1U);
}

TEST(EditDistance, IsThatOfTheDefinitionForRandomWordsAndLimits)
{
    Random random(11);
    for (int round = 0; round < 3000; ++round) {
        const std::string a = randomWord(random);
        const std::string b = randomWord(random);
        const std::size_t limit = random.below(8);
        EXPECT_EQ(editDistance(a, b, limit), std::min(plainDistance(a, b), limit + 1))
            << "'" << a << "' and '" << b << "' up to " << limit;
    }
}

TEST(NearestName, IsTheNearestOfTheKnownOnes)
{
    EXPECT_EQ(nearestName("G2gta", {"G12gat", "G2gat", "G1gat"}), "G2gat");
    EXPECT_EQ(nearestName("positoin", {"pressure", "position"}), "position");
}

TEST(NearestName, IsTheFirstOfEquallyNearOnes)
{
    EXPECT_EQ(nearestName("G0", {"G3", "G1", "G2"}), "G3");
}

TEST(NearestName, DiffersInAThirdOfTheLettersAtMost)
{
    EXPECT_EQ(nearestName("abcdef", {"abcdxy"}), "abcdxy");
    EXPECT_EQ(nearestName("abcdef", {"abcxyz"}), "");
    EXPECT_EQ(nearestName("abcde", {"abcxy"}), "");
    EXPECT_EQ(nearestName("carry", {}), "");
}

TEST(NearestName, OfASingleLetterDiffersInCaseAlone)
{
    EXPECT_EQ(nearestName("a", {"b", "A"}), "A");
    EXPECT_EQ(nearestName("a", {"b", "ab"}), "");
}

TEST(NearestName, IsNotTheNameItself)
{
    EXPECT_EQ(nearestName("valve", {"valve", "valves"}), "valves");
}

TEST(NearestName, IsNotSoughtForVeryLongNames)
{
    EXPECT_EQ(nearestName(std::string(64, 'a'), {std::string(63, 'a')}), std::string(63, 'a'));
    EXPECT_EQ(nearestName(std::string(65, 'a'), {std::string(64, 'a')}), "");
}

} // namespace
