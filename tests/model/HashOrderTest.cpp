// The hash of identifiers, and the iteration order of the hash maps against buckets written out by hand.
#include "model/keys.h"
#include "tests/reference/BucketOrder.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

namespace {

std::vector<std::string> keysOf(const AtomMap& map)
{
    std::vector<std::string> keys;
    for (const auto& [id, atom] : map) {
        keys.emplace_back(id);
    }
    return keys;
}

std::vector<int> keysOf(const ProbMap& map)
{
    std::vector<int> keys;
    for (const auto& [id, probability] : map) {
        keys.push_back(id);
    }
    return keys;
}

std::deque<std::string> identifiers(std::mt19937& random, std::size_t count)
{
    std::uniform_int_distribution<int> number(0, 9999);
    std::deque<std::string> ids;
    for (std::size_t i = 0; i < count; ++i) {
        ids.push_back("c" + std::to_string(number(random)) + ".v" + std::to_string(number(random)) +
                      "=" + std::to_string(i));
    }
    return ids;
}

TEST(TextHash, MultipliesByFiveAndAddsTheCharacter)
{
    const __gnu_cxx::hash<const char*> hash;
    EXPECT_EQ(hash(""), 0u);
    EXPECT_EQ(hash("a"), 97u);
    EXPECT_EQ(hash("ab"), 97u * 5 + 98);
    EXPECT_EQ(hash("abc"), (97u * 5 + 98) * 5 + 99);
}

TEST(TextHash, TakesCharactersAsSigned)
{
    const __gnu_cxx::hash<const char*> hash;
    EXPECT_EQ(hash("\xff"), static_cast<std::size_t>(-1L));
    EXPECT_EQ(hash("\xc3\xa9"), static_cast<std::size_t>(5L * (0xc3 - 256) + (0xa9 - 256)));
}

TEST(TextHash, WrapsAroundForLongTexts)
{
    const std::string text(80, 'z');
    EXPECT_EQ(__gnu_cxx::hash<const char*>()(text.c_str()), TextHash()(text));
}

TEST(NumberHash, IsTheNumber)
{
    EXPECT_EQ(__gnu_cxx::hash<int>()(0), 0u);
    EXPECT_EQ(__gnu_cxx::hash<int>()(1234567), 1234567u);
}

TEST(HashOrder, OfFewIdentifiersIsThatOfTheirHashes)
{
    // a, b and c have the hashes 97, 98 and 99: their buckets are in this order whatever was entered first.
    AtomMap map;
    map["c"] = nullptr;
    map["a"] = nullptr;
    map["b"] = nullptr;
    EXPECT_EQ(keysOf(map), (std::vector<std::string>{"a", "b", "c"}));
}

TEST(HashOrder, PutsTheNewerKeyOfABucketFirst)
{
    // The two collide: 5 'a' + 'f' is 5 'b' + 'a'.
    AtomMap map;
    map["af"] = nullptr;
    map["ba"] = nullptr;
    EXPECT_EQ(keysOf(map), (std::vector<std::string>{"ba", "af"}));
}

TEST(HashOrder, OfNumbersRunsThrough193Buckets)
{
    ProbMap map;
    for (const int id : {193, 5, 1, 198, 0}) {
        map[id] = 0.5;
    }
    EXPECT_EQ(keysOf(map), (std::vector<int>{0, 193, 1, 198, 5}));
}

TEST(HashOrder, OfIdentifiersIsThatOfTheBuckets)
{
    const unsigned int seed = 77;
    std::mt19937 random(seed);
    for (const std::size_t count : {10u, 100u, 193u, 194u, 389u, 390u, 1000u}) {
        const std::deque<std::string> ids = identifiers(random, count);
        AtomMap map;
        BucketOrder<std::string, TextHash> reference;
        for (const std::string& id : ids) {
            map[id.c_str()] = nullptr;
            reference.insert(id);
        }
        EXPECT_EQ(keysOf(map), reference.keys()) << "seed " << seed << ", " << count << " keys";
    }
}

TEST(HashOrder, OfNumbersIsThatOfTheBuckets)
{
    const unsigned int seed = 78;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> number(0, 100000);
    for (const int count : {10, 100, 193, 194, 500, 1000}) {
        ProbMap map;
        BucketOrder<int, NumberHash> reference;
        for (int i = 0; i < count; ++i) {
            const int id = number(random);
            map[id] = 0.0;
            reference.insert(id);
        }
        EXPECT_EQ(keysOf(map), reference.keys()) << "seed " << seed << ", " << count << " keys";
    }
}

TEST(HashOrder, IsKeptByACopy)
{
    const unsigned int seed = 79;
    std::mt19937 random(seed);
    for (const std::size_t count : {0u, 50u, 300u}) {
        const std::deque<std::string> ids = identifiers(random, count);
        AtomMap map;
        for (const std::string& id : ids) {
            map[id.c_str()] = nullptr;
        }
        const AtomMap copy(map);
        EXPECT_EQ(keysOf(copy), keysOf(map)) << "seed " << seed << ", " << count << " keys";
    }
}

} // namespace
