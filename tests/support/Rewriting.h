// The same plant written in another way: what it says is the same, so all that is said of it must be.
#pragma once

#include "tests/reference/Random.h"
#include "tests/support/PlantText.h"

#include <functional>
#include <map>
#include <string>

namespace written {

/// What things are called now, by the old names; those that are not here keep theirs.
using Names = std::map<std::string, std::string>;

/// Names such as "p0/core.out=low", with blanks between them, with each of their parts in the new words.
std::string renamed(const std::string& name, const Names& names);

struct Rewritten {
    std::string text;
    Names names = {};
};

using Rewriting = std::function<Rewritten(const PlantText&, Random&)>;

/// Components, and the statements in them but for the bindings, in another order.
Rewritten permuted(const PlantText& plant, Random& random);
/// What is observed and given, in another order.
Rewritten bindingsPermuted(const PlantText& plant, Random& random);
/// The values of conditions and modes in another order; of a command the first one has a meaning.
Rewritten valuesPermuted(const PlantText& plant, Random& random);
/// `a -> b` as `!b -> !a`, and likewise `<->`.
Rewritten contrapositive(const PlantText& plant, Random& random);
/// Each law as several, as far as it can be taken apart without turning it round.
Rewritten split(const PlantText& plant, Random& random);
/// Each law as its clauses, with their literals in any order.
Rewritten asClauses(const PlantText& plant, Random& random);
/// `x in {b, c}` as `x = b | x = c` in laws and guards.
Rewritten spelledOut(const PlantText& plant, Random& random);
/// In laws, the values that a variable does not have instead of the one or those that it has.
Rewritten asExclusions(const PlantText& plant, Random& random);
/// In guards, likewise; and the values that a variable may have instead of the one that it does not have.
Rewritten guardsTurned(const PlantText& plant, Random& random);
/// Some laws more, which follow from two of the others.
Rewritten withConsequences(const PlantText& plant, Random& random);
/// Everything has another name, and the names another order.
Rewritten withOtherNames(const PlantText& plant, Random& random);
/// A component has one more condition, which nothing mentions.
Rewritten withOpenSpare(const PlantText& plant, Random& random);
/// A component has one more condition, whose value a law gives.
Rewritten withFixedSpare(const PlantText& plant, Random& random);
/// A component has one more condition, which is always the same as another one and stands for it in half of the laws.
Rewritten withACopy(const PlantText& plant, Random& random);
/// Some parts are parts of a part that holds nothing else.
Rewritten wrapped(const PlantText& plant, Random& random);

} // namespace written
