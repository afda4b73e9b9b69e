// Sequences of calls drawn from a seed, replayed on one engine or the other, and made shorter while two engines still differ.
//
// Each call draws its arguments from a seed of its own: when some calls are left out, the others are made with the arguments that
// they would have had in the same state.
#pragma once

#include "tests/reference/EvaluationOperations.h"
#include "tests/reference/LifeOperations.h"
#include "tests/reference/ProbabilityOperations.h"
#include "tests/reference/RepairOperations.h"

#include <functional>
#include <optional>

struct Call {
    std::size_t table; ///< life, evaluation, repair, probability
    std::uint64_t operation;
    std::uint64_t seed; ///< of its arguments
};

struct CallSequence {
    std::uint64_t model; ///< the seed of the model, and of what is there before the first call
    std::vector<Call> calls;
};

inline CallSequence drawCalls(std::uint64_t seed, std::size_t length)
{
    Random random(seed);
    CallSequence drawn{random.next() % 1'000'000, {}};
    for (std::size_t i = 0; i < length; ++i) {
        drawn.calls.push_back({random.below(4), random.next(), random.next()});
    }
    return drawn;
}

template <class Engine> void make(const Call& call, Bench<Engine>& bench)
{
    bench.random = Random(call.seed);
    const auto of = [&](const auto& table) { table[call.operation % table.size()](bench); };
    switch (call.table) {
    case 0: of(LifeOperations<Engine>::all()); break;
    case 1: of(EvaluationOperations<Engine>::all()); break;
    case 2: of(RepairOperations<Engine>::all()); break;
    default: of(ProbabilityOperations<Engine>::all());
    }
}

/// Nothing can be tried on a model without atoms or clauses.
template <class Engine> bool isEmpty(const Bench<Engine>& bench)
{
    return bench.model.atoms.empty() || bench.model.clauses.empty();
}

/// What a sequence lets be seen. Throws SearchTooLarge where the plain engine does.
template <class Engine> Observed replay(const CallSequence& sequence, bool muted = false)
{
    Bench<Engine> bench(sequence.model, muted);
    for (const Call& call : sequence.calls) {
        if (isEmpty(bench)) break;
        make(call, bench);
    }
    return std::move(bench.run.observed);
}

/// How two engines differ: in what the first one expects and the other lets be seen; empty when they do not, and none where the
/// first one's search was too large.
template <class Expected, class Seen>
std::optional<std::string> differenceOf(const CallSequence& sequence)
{
    try {
        const Observed expected = replay<Expected>(sequence);
        return firstDifference(expected, replay<Seen>(sequence));
    } catch (const SearchTooLarge&) {
        return std::nullopt;
    }
}

/// Leaves out as many calls, many at a time and then one by one, as can be without the failure being gone.
inline CallSequence shrunk(CallSequence sequence,
                           const std::function<bool(const CallSequence&)>& fails)
{
    for (std::size_t size = std::max<std::size_t>(sequence.calls.size() / 2, 1); size > 0;
         size /= 2) {
        for (std::size_t begin = 0; begin < sequence.calls.size();) {
            CallSequence shorter = sequence;
            const auto first = shorter.calls.begin() + static_cast<std::ptrdiff_t>(begin);
            const std::size_t count = std::min(size, sequence.calls.size() - begin);
            shorter.calls.erase(first, first + static_cast<std::ptrdiff_t>(count));
            if (fails(shorter)) {
                sequence = std::move(shorter);
            } else {
                begin += size;
            }
        }
    }
    return sequence;
}

/// The model's seed, and what the calls are about.
template <class Engine> std::string describe(const CallSequence& sequence)
{
    std::string text = "model " + std::to_string(sequence.model) + ", calls:";
    Bench<Engine> bench(sequence.model, false);
    for (const Call& call : sequence.calls) {
        const std::size_t before = bench.run.observed.pieces.size();
        make(call, bench);
        const auto& pieces = bench.run.observed.pieces;
        text += "\n  " + (pieces.size() > before ? pieces[before].what : "(nothing)") + ", seed " +
                std::to_string(call.seed);
    }
    return text + "\n";
}
