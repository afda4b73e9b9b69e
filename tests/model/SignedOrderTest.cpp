// The iteration order of the signed maps against a tree written out by hand.
#include "model/Atom.h"
#include "model/TrajEl.h"
#include "tests/reference/SignedTree.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

namespace {

// Atoms and elements whose place in the vectors is their payload.
class SignedOrder : public testing::Test {
protected:
    SignedOrder()
    {
        for (int i = 0; i < 200; ++i) {
            atoms_.push_back(std::make_unique<Atom>());
            atoms_.back()->initTrue = i;
            els_.push_back(std::make_unique<TrajEl>());
            els_.back()->lock = i;
        }
    }

    SignedAtoms atomsWith(const std::vector<bool>& signs)
    {
        SignedAtoms map;
        for (std::size_t i = 0; i < signs.size(); ++i) {
            map.insert({signs[i], atoms_[i].get()});
        }
        return map;
    }
    SignedEls elsWith(const std::vector<bool>& signs)
    {
        SignedEls map;
        for (std::size_t i = 0; i < signs.size(); ++i) {
            map.insert({signs[i], els_[i].get()});
        }
        return map;
    }

    std::vector<std::unique_ptr<Atom>> atoms_;
    std::vector<std::unique_ptr<TrajEl>> els_;
};

std::vector<int> orderOf(const SignedAtoms& map)
{
    std::vector<int> order;
    for (const auto& [sign, atom] : map) {
        order.push_back(atom->initTrue);
    }
    return order;
}

std::vector<int> orderOf(const SignedEls& map)
{
    std::vector<int> order;
    for (const auto& [sign, el] : map) {
        order.push_back(el->lock);
    }
    return order;
}

std::vector<int> reference(const std::vector<bool>& signs)
{
    SignedTree tree;
    for (std::size_t i = 0; i < signs.size(); ++i) {
        tree.insert(signs[i], static_cast<int>(i));
    }
    return tree.inOrder();
}

std::string written(const std::vector<bool>& signs)
{
    std::string text;
    for (const bool sign : signs) {
        text += sign ? 'T' : 'F';
    }
    return text;
}

std::vector<bool> bits(unsigned int number, std::size_t length)
{
    std::vector<bool> signs;
    for (std::size_t i = 0; i < length; ++i) {
        signs.push_back(((number >> i) & 1u) != 0);
    }
    return signs;
}

std::vector<bool> randomSigns(std::mt19937& random, std::size_t length)
{
    // Some sequences are nearly of one sign, others well mixed.
    std::bernoulli_distribution sign(std::uniform_real_distribution<>(0.05, 0.95)(random));
    std::vector<bool> signs;
    for (std::size_t i = 0; i < length; ++i) {
        signs.push_back(sign(random));
    }
    return signs;
}

TEST_F(SignedOrder, OfAtomsIsThatOfTheTreeForEverySequenceUpTo12)
{
    for (std::size_t length = 0; length <= 12; ++length) {
        for (unsigned int number = 0; number < (1u << length); ++number) {
            const std::vector<bool> signs = bits(number, length);
            ASSERT_EQ(orderOf(atomsWith(signs)), reference(signs)) << written(signs);
        }
    }
}

TEST_F(SignedOrder, OfElementsIsThatOfTheTreeForEverySequenceUpTo10)
{
    for (std::size_t length = 0; length <= 10; ++length) {
        for (unsigned int number = 0; number < (1u << length); ++number) {
            const std::vector<bool> signs = bits(number, length);
            ASSERT_EQ(orderOf(elsWith(signs)), reference(signs)) << written(signs);
        }
    }
}

TEST_F(SignedOrder, IsThatOfTheTreeForRandomSequencesUpTo200)
{
    const unsigned int seed = 20240611;
    std::mt19937 random(seed);
    for (std::size_t length = 13; length <= 200; ++length) {
        const std::vector<bool> signs = randomSigns(random, length);
        ASSERT_EQ(orderOf(atomsWith(signs)), reference(signs))
            << "seed " << seed << ", " << written(signs);
        ASSERT_EQ(orderOf(elsWith(signs)), reference(signs))
            << "seed " << seed << ", " << written(signs);
    }
}

TEST_F(SignedOrder, OfOneSignIsNewestFirstAtAnyLength)
{
    for (std::size_t length = 1; length <= 200; ++length) {
        std::vector<int> newestFirst;
        for (std::size_t i = length; i > 0; --i) {
            newestFirst.push_back(static_cast<int>(i - 1));
        }
        ASSERT_EQ(orderOf(atomsWith(std::vector<bool>(length, true))), newestFirst);
        ASSERT_EQ(orderOf(atomsWith(std::vector<bool>(length, false))), newestFirst);
    }
}

TEST_F(SignedOrder, IsKeptByACopy)
{
    const unsigned int seed = 811;
    std::mt19937 random(seed);
    for (std::size_t length = 0; length <= 60; ++length) {
        const std::vector<bool> signs = randomSigns(random, length);
        const SignedAtoms original = atomsWith(signs);
        const SignedAtoms copy(original);
        ASSERT_EQ(orderOf(copy), orderOf(original)) << "seed " << seed << ", " << written(signs);
    }
}

TEST_F(SignedOrder, OfACopyThatGrowsFurtherIsThatOfTheTree)
{
    const unsigned int seed = 4711;
    std::mt19937 random(seed);
    for (std::size_t length = 2; length <= 100; ++length) {
        const std::vector<bool> signs = randomSigns(random, length);
        const std::size_t half = length / 2;
        SignedAtoms copy(atomsWith(
            std::vector<bool>(signs.begin(), signs.begin() + static_cast<std::ptrdiff_t>(half))));
        for (std::size_t i = half; i < length; ++i) {
            copy.insert({signs[i], atoms_[i].get()});
        }
        ASSERT_EQ(orderOf(copy), reference(signs)) << "seed " << seed << ", " << written(signs);
    }
}

} // namespace
