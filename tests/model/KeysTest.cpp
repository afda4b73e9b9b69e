// The key predicates of the containers, and what they make of keys.
#include "model/keys.h"
#include "model/Atom.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(Keys, EqstrIsTrueForTheSamePointer)
{
    const char* text = "valve.pos=open";
    EXPECT_TRUE(eqstr()(text, text));
}

TEST(Keys, EqstrComparesCharactersNotPointers)
{
    const std::string first = "valve.pos=open";
    const std::string second = first.c_str();
    ASSERT_NE(first.c_str(), second.c_str());
    EXPECT_TRUE(eqstr()(first.c_str(), second.c_str()));
}

TEST(Keys, EqstrTellsTextsApart)
{
    EXPECT_FALSE(eqstr()("valve.pos=open", "valve.pos=closed"));
    EXPECT_FALSE(eqstr()("valve", "valv"));
    EXPECT_FALSE(eqstr()("valve", "Valve"));
    EXPECT_TRUE(eqstr()("", ""));
}

TEST(Keys, EqboolIsEquality)
{
    EXPECT_TRUE(eqbool()(true, true));
    EXPECT_TRUE(eqbool()(false, false));
    EXPECT_FALSE(eqbool()(true, false));
    EXPECT_FALSE(eqbool()(false, true));
}

TEST(Keys, EqstringOrdersTexts)
{
    EXPECT_TRUE(eqstring()("a", "b"));
    EXPECT_FALSE(eqstring()("b", "a"));
    EXPECT_FALSE(eqstring()("a", "a"));
}

TEST(Keys, TwoPointersToEqualTextAreOneKeyOfAHashMap)
{
    const std::string first = "valve.pos=open";
    const std::string second = first.c_str();
    Atom a;
    Atom b;
    AtomMap map;
    map[first.c_str()] = &a;
    map[second.c_str()] = &b;
    EXPECT_EQ(map.size(), 1u);
    EXPECT_EQ(map.find(first.c_str())->second, &b);
}

TEST(Keys, AHashMapKeepsTheFirstPointerOfAKey)
{
    const std::string first = "valve.pos=open";
    const std::string second = first.c_str();
    AtomMap map;
    map[first.c_str()] = nullptr;
    map[second.c_str()] = nullptr;
    EXPECT_EQ(map.begin()->first, first.c_str());
}

TEST(Keys, AMissingKeyIsEnteredWithANullValueByTheSubscript)
{
    AtomMap map;
    EXPECT_EQ(map["valve.pos=open"], nullptr);
    EXPECT_EQ(map.size(), 1u);
}

TEST(Keys, TheContainersHaveTheFixedTypes)
{
    using Text = const char*;
    using ByText = __gnu_cxx::hash<Text>;
    static_assert(std::is_same_v<AtomMap, __gnu_cxx::hash_map<Text, Atom*, ByText, eqstr>>);
    static_assert(std::is_same_v<CompMap, __gnu_cxx::hash_map<Text, Comp*, ByText, eqstr>>);
    static_assert(std::is_same_v<ElMap, __gnu_cxx::hash_map<Text, TrajEl*, ByText, eqstr>>);
    using ByNumber = __gnu_cxx::hash<int>;
    using Same = std::equal_to<int>;
    static_assert(
        std::is_same_v<TransitionMap, __gnu_cxx::hash_map<int, Transition*, ByNumber, Same>>);
    static_assert(std::is_same_v<ProbMap, __gnu_cxx::hash_map<int, double, ByNumber, Same>>);
    static_assert(std::is_same_v<CondProbMap, __gnu_cxx::hash_map<Text, ProbMap*, ByText, eqstr>>);
    static_assert(
        std::is_same_v<SortedProbMap, std::multimap<double, int, std::greater_equal<double>>>);
    static_assert(std::is_same_v<SignedAtoms, std::multimap<bool, Atom*, eqbool>>);
    static_assert(std::is_same_v<SignedEls, std::multimap<bool, TrajEl*, eqbool>>);
    SUCCEED();
}

// "T1 F2" inserts the first atom under true and the second under false; answers in the same form.
std::string iterated(const std::string& insertions)
{
    std::vector<std::unique_ptr<Atom>> atoms;
    SignedAtoms map;
    std::istringstream words(insertions);
    for (std::string word; words >> word;) {
        atoms.push_back(std::make_unique<Atom>());
        atoms.back()->id = word.substr(1);
        map.insert({word.front() == 'T', atoms.back().get()});
    }
    std::string order;
    for (const auto& [sign, atom] : map) {
        order += (order.empty() ? "" : " ") + std::string(sign ? "T" : "F") + atom->id;
    }
    return order;
}

TEST(SignedMap, LiteralsOfOneSignIterateNewestFirst)
{
    EXPECT_EQ(iterated("T1 T2 T3 T4"), "T4 T3 T2 T1");
    EXPECT_EQ(iterated("F1 F2 F3 F4"), "F4 F3 F2 F1");
}

TEST(SignedMap, MixedSignsIterateByTheShapeOfTheTree)
{
    EXPECT_EQ(iterated("F1 T2"), "F1 T2");
    EXPECT_EQ(iterated("T1 F2"), "T1 F2");
    EXPECT_EQ(iterated("F1 T2 F3"), "F3 F1 T2");
    EXPECT_EQ(iterated("T1 F2 T3"), "T3 T1 F2");
    EXPECT_EQ(iterated("F1 T2 F3 T4"), "F3 F1 T4 T2");
}

TEST(SignedMap, SignsAreNotGrouped)
{
    EXPECT_EQ(iterated("F1 T2 T3 F4 F5"), "F1 T3 T2 F5 F4");
}

TEST(SortedProbabilities, IterateLargestFirst)
{
    SortedProbMap map;
    map.insert({0.25, 1});
    map.insert({0.5, 2});
    map.insert({0.125, 3});
    std::vector<int> order;
    for (const auto& [probability, id] : map) {
        order.push_back(id);
    }
    EXPECT_EQ(order, (std::vector<int>{2, 1, 3}));
}

TEST(SortedProbabilities, OfEqualOnesTheLatestComesFirst)
{
    SortedProbMap map;
    for (int id = 0; id < 8; ++id) {
        map.insert({0.5, id});
    }
    std::vector<int> order;
    for (const auto& [probability, id] : map) {
        order.push_back(id);
    }
    EXPECT_EQ(order, (std::vector<int>{7, 6, 5, 4, 3, 2, 1, 0}));
}

} // namespace
