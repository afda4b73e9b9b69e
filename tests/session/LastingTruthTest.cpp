// What happened is still believed to be possible a long time after it showed, while nothing new is seen.
#include "language/Reader.h"
#include "session/Session.h"
#include "tests/support/Sanitized.h"
#include "tests/support/SimulatedRun.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using plant::AtomIndex;
using simulate::SimulatedStep;

constexpr std::size_t constantSteps = underSanitizers ? 300 : 2000;

/// An example at work, as its model is.
class Plant {
public:
    /// The commands are given at the first step, and none after it.
    Plant(const std::string& file, const std::vector<std::string>& commands)
        : session_(session::Session::open(ITMS_ROOT "/examples/" + file)),
          beginning_(session_.checkpoint())
    {
        for (const auto& atom : session_.model().atoms()) {
            if (std::count(commands.begin(), commands.end(), atom->id) > 0) {
                commands_.push_back(session_.plant().indexOf(atom.get()));
            }
        }
    }

    /// The faults that may come after the first steps.
    std::vector<AtomIndex> faults() const
    {
        simulate::Simulator simulator(session_.plant(), session_.bindings());
        simulator.step({commands_, {}, {}});
        for (std::size_t i = 1; i < stepsBefore; ++i) simulator.step({});
        std::vector<AtomIndex> faults;
        for (const auto& option : simulate::possibleFaults(session_.plant(), simulator, {})) {
            faults.push_back(option.value);
        }
        return faults;
    }

    /// Whether a fault shows soon after it came: it is among what is believed, and that something is wrong is certain. Where it is so,
    /// the constant steps follow.
    bool shows(AtomIndex fault)
    {
        session_.resume(beginning_);
        simulate::Simulator simulator(session_.plant(), session_.bindings());
        number_ = 0;
        take(simulator, {commands_, {}, {}});
        for (std::size_t i = 1; i < stepsBefore; ++i) take(simulator, {});
        take(simulator, {{}, {}, {fault}});
        for (std::size_t i = 0; i < stepsAfter; ++i) take(simulator, {});
        if (!isKept() || !somethingIsWrong()) return false;
        for (std::size_t i = 0; i < constantSteps; ++i) take(simulator, {});
        return true;
    }

    /// Whether some hypothesis has the modes that there are.
    bool isKept() const
    {
        const auto& hypotheses = session_.answer().hypotheses;
        return std::any_of(hypotheses.begin(), hypotheses.end(),
                           [&](const auto& one) { return one->modes == modes_; });
    }

    std::string name(AtomIndex fault) const { return session_.plant().atom(fault)->id; }

private:
    static constexpr std::size_t stepsBefore = 3;
    static constexpr std::size_t stepsAfter = 3;

    bool somethingIsWrong() const
    {
        const auto& hypotheses = session_.answer().hypotheses;
        return std::all_of(hypotheses.begin(), hypotheses.end(),
                           [](const auto& one) { return one->isFaulty(); });
    }

    void take(simulate::Simulator& simulator, const simulate::SimulationInput& input)
    {
        const plant::Plant& plant = session_.plant();
        const auto happened = std::get<SimulatedStep>(simulator.step(input));
        telemetry::Step step;
        step.number = ++number_;
        step.t = static_cast<double>(number_) * session_.bindings().stepSeconds;
        for (const AtomIndex command : happened.commands) {
            step.commands.push_back(plant.atom(command));
        }
        for (const AtomIndex observed : happened.observations) {
            step.observations.push_back({plant.atom(observed), false});
        }
        modes_.clear();
        for (std::size_t i = 0; i < happened.values.size(); ++i) {
            if (plant.variables()[i].isMode) modes_.push_back(happened.values[i]);
        }
        session_.advance(step);
    }

    session::Session session_;
    session::Checkpoint beginning_;
    std::vector<AtomIndex> commands_;
    std::size_t number_ = 0;
    std::vector<AtomIndex> modes_; ///< as they are, in the plant's order
};

// Of the faults that there may be, one in so many is tried.
void expectKept(const std::string& file, const std::vector<std::string>& commands,
                std::size_t oneIn, int fewest)
{
    Plant plant(file, commands);
    int shown = 0;
    const std::vector<AtomIndex> faults = plant.faults();
    for (std::size_t i = 0; i < faults.size(); i += underSanitizers ? 3 * oneIn : oneIn) {
        if (!plant.shows(faults[i])) continue;
        ++shown;
        EXPECT_TRUE(plant.isKept()) << plant.name(faults[i]);
    }
    EXPECT_GE(shown, underSanitizers ? 1 : fewest) << "of " << faults.size();
}

TEST(LastingTruth, OfThePumpingStation)
{
    expectKept("water/station.itms", {}, 1, 9);
}

TEST(LastingTruth, OfThePowerSupply)
{
    expectKept("power/grid.itms", {}, 8, 3);
}

TEST(LastingTruth, OfTheVentilation)
{
    expectKept("guide/plant.itms", {"damper.request=open", "fan.request=start"}, 1, 5);
}

} // namespace
