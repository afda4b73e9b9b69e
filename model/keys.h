// The key predicates of the system's containers, and the names of those containers.
//
// Identifiers are NUL-terminated strings that the keyed object itself holds: maps store the pointer,
// never a copy, so an atom outlives every map that holds its key.
//
// Signed literals live in a multimap whose *ordering* predicate is equality. Its iteration order is
// therefore a matter of insertion history: a new node goes left of every node with an equal key and
// right of every other, and the tree is rebalanced as usual. T1 T2 T3 (all of one sign) iterates
// T3 T2 T1; F1 T2 F3 iterates F3 F1 T2. Only iteration means anything on these maps: never look a key
// up, and copy them with their copy constructor, which keeps the tree as it is.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <queue>
#include <stack>
#include <string>
#include <vector>

// The hash containers carry a deprecation notice; it is silenced here and nowhere else.
#ifndef _GLIBCXX_PERMIT_BACKWARD_HASH
#define _GLIBCXX_PERMIT_BACKWARD_HASH // NOLINT(bugprone-reserved-identifier)
#include <ext/hash_map>
#undef _GLIBCXX_PERMIT_BACKWARD_HASH
#else
#include <ext/hash_map>
#endif

class Atom;
class Clause;
class Comp;
class StateVar;
class TrajEl;
class Transition;

/// Asks a constructor for an object whose containers are null: whoever makes it puts them in before anything works on it.
struct WithoutContainers {};

/// Equality of two NUL-terminated texts, wherever they stand.
struct eqstr {
    bool operator()(const char* a, const char* b) const { return a == b || std::strcmp(a, b) == 0; }
};

/// Ordering predicate of the signed maps: true when the signs are equal (see the head of this file).
struct eqbool {
    bool operator()(bool a, bool b) const { return a == b; }
};

/// Ordering predicate of the atoms listed by name: the usual order of texts.
struct eqstring {
    bool operator()(const std::string& a, const std::string& b) const { return a < b; }
};

/// Hash map from an identifier to a `Value`; 100 buckets asked for, iteration in bucket order.
template <class Value>
using IdMap = __gnu_cxx::hash_map<const char*, Value, __gnu_cxx::hash<const char*>, eqstr>;

/// Hash map from a number (a transition's identifier, a time step) to a `Value`.
template <class Value>
using NumberMap = __gnu_cxx::hash_map<int, Value, __gnu_cxx::hash<int>, std::equal_to<int>>;

using AtomMap = IdMap<Atom*>;
using CompMap = IdMap<Comp*>;
using ElMap = IdMap<TrajEl*>;
using StateVarMap = IdMap<StateVar*>;
using TransitionMap = NumberMap<Transition*>;

/// Transition identifier to probability.
using ProbMap = NumberMap<double>;
/// Atom identifier to a distribution over transitions, given that the atom holds.
using CondProbMap = IdMap<ProbMap*>;
/// Probability to transition identifier, largest first; of equal ones the latest comes first.
using SortedProbMap = std::multimap<double, int, std::greater_equal<double>>;

/// Signed literals of a clause (key true: negated) or of a formula (key true: the atom holds).
using SignedAtoms = std::multimap<bool, Atom*, eqbool>;
/// Signed elements: propositions (key: the truth value to assign) or unknown literals (key: the sign).
using SignedEls = std::multimap<bool, TrajEl*, eqbool>;
