// What may be lost between the plant and its records at a step: commands that do not arrive, and readings that are wrong.
#pragma once

#include "monitor/step/Scenario.h"
#include "monitor/track/ConnectedVariables.h"
#include "monitor/track/Hypothesis.h"
#include "plant/Bindings.h"

#include <vector>

namespace monitor {

/// Losses of one step, in the order of the step's.
using Losses = std::vector<Loss>;

/// More are not tried at once where a step is searched.
constexpr std::size_t mostLostAtOnce = 2;

bool contains(const Losses& losses, const Loss& one);

/// How many of them are commands: these count as faults, readings do not.
int lostCommands(const Losses& losses);

/// How many of them may be lost together, of so many commands at most.
std::size_t mostLosses(const Losses& lossy, int mostCommands);

/// Natural logarithm of the probability that these are lost, of all that may be, and no others; of a wrong reading, that it is this one.
double logArrivals(const TrackInput& input, const Losses& lost);
/// How much the probability of a step changes where one is lost that is expected to arrive, as a logarithm.
double logLoss(const Loss& one);

/// The step's commands and observations when these are lost, and when readings that are held were wrong before, which `wrong` has
/// among others.
StepInput arriving(const TrackInput& input, const Losses& lost, const std::vector<AtomIndex>& wrong);

/// What is lost of the step's values when these are, sorted: they, and readings that are held and were wrong before.
std::vector<AtomIndex> lostValues(const TrackInput& input, const Losses& lost,
                                  const std::vector<AtomIndex>& wrong);

/// All sets of a size of what may be lost, each in the order of the whole; those with an earlier last one first. One at a time: there may
/// be very many. The list outlives it.
class LostSets {
public:
    LostSets(const Losses& lossy, std::size_t size);
    /// Null: no more. Valid until the next call.
    const Losses* next();

private:
    void advance();

    const Losses& lossy_;
    std::vector<std::size_t> places_;
    Losses set_;
    bool atEnd_;
};

/// Losses that happen together at a step.
struct ProbableLoss {
    Losses lost;
    double ratio; ///< how probable that is, compared with what is most probable
};

/// Those that are probable enough, with at most so many commands; the first `most` of them, and one more where there are more.
std::vector<ProbableLoss> probableLosses(const Losses& lossy, double leastRatio, int mostCommands,
                                         std::size_t most);

/// Whether a reading is among them.
bool haveReadings(const Losses& losses);

/// Those whose loss can explain what contradicts what is expected: all commands, and readings that laws connect with what is
/// contradicted. Costs some predictions of the step.
Losses lossesThatMatter(const StepFrame& frame, const Losses& lossy,
                        const ConnectedVariables& connected);

/// Those among the given commands that may be lost, and are not what their variable has without a command anyway.
Losses lossyCommands(const Plant& plant, const plant::Bindings& bindings,
                     const std::vector<AtomIndex>& given);

} // namespace monitor
