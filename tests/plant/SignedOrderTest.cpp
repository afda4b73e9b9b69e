// The order of literals that is computed, compared with that of the map.
#include "plant/SignedOrder.h"

#include "model/keys.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using plant::SignedNumber;

std::vector<SignedNumber> listedByTheMap(const std::vector<SignedNumber>& literals)
{
    std::multimap<bool, SignedNumber, eqbool> map;
    for (const SignedNumber literal : literals) {
        map.insert({(literal & 1U) != 0, literal});
    }
    std::vector<SignedNumber> listed;
    for (const auto& [sign, literal] : map) {
        listed.push_back(literal);
    }
    return listed;
}

TEST(SignedOrderTest, IsThatOfTheMapForAllSignsOfUpToTenLiterals)
{
    for (std::uint32_t size = 0; size <= 10; ++size) {
        for (std::uint32_t signs = 0; signs < 1U << size; ++signs) {
            std::vector<SignedNumber> literals;
            for (std::uint32_t i = 0; i < size; ++i) {
                literals.push_back(plant::signedNumber(100 - i, (signs >> i & 1U) != 0));
            }
            const std::vector<SignedNumber> expected = listedByTheMap(literals);
            plant::sortAsListed(literals);
            ASSERT_EQ(literals, expected) << size << " literals, signs " << signs;
        }
    }
}

TEST(SignedOrderTest, IsThatOfTheMapForManyLiterals)
{
    std::mt19937 random(7);
    for (const std::uint32_t percent : {0U, 1U, 50U, 100U}) {
        std::vector<SignedNumber> literals;
        for (std::uint32_t i = 0; i < 300; ++i) {
            literals.push_back(plant::signedNumber(i, random() % 100 < percent));
        }
        const std::vector<SignedNumber> expected = listedByTheMap(literals);
        plant::sortAsListed(literals);
        EXPECT_EQ(literals, expected) << percent << " in a hundred are negated";
    }
}

} // namespace
