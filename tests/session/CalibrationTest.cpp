// Whether what is said with probability p happens with frequency p. Plants live by the probabilities of their models, with faults
// made frequent enough to happen, and are followed with the usual settings.
#include "tests/session/DrawnFollower.h"
#include "tests/support/RandomPlantText.h"
#include "tests/support/Sanitized.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace {

constexpr std::size_t stepsOfRun = 12;

constexpr int atMost(int runs)
{
    return underSanitizers ? runs / 10 : runs;
}

// What an open reading does where the model leaves that to be learned: the run and who follows it have to agree.
constexpr double variesUnlessGiven = 0.1;

void expectCalibrated(const std::string& plants, const Outcome& outcome)
{
    fmt::print("{}: {} runs, {} steps, {} of them inconsistent; \"nothing is wrong\" {} times, {} "
               "times while a fault did not show\n",
               plants, outcome.runs, outcome.steps, outcome.inconsistent, outcome.sound,
               outcome.silent);
    for (const auto& [what, reliability] :
         {std::pair("fault", &outcome.fault), std::pair("components", &outcome.components),
          std::pair("values", &outcome.values)}) {
        fmt::print("  {}: {} statements, Brier score {:.5f}, at most {:.5f}\n{}", what,
                   reliability->said(), reliability->brier(), reliability->largestBrier(),
                   reliability->table());
        EXPECT_TRUE(reliability->holds()) << what << '\n' << reliability->table();
        EXPECT_LE(reliability->brier(), reliability->largestBrier()) << what;
    }
    EXPECT_EQ(outcome.impossible, 0);
    EXPECT_LE(outcome.inconsistent, outcome.steps / 500);
}

// Faults come `factor` times as often as the example says.
void expectCalibrated(const std::string& file, double factor, int runs)
{
    Outcome outcome;
    DrawnFollower follower(
        withRates(language::readModel(ITMS_ROOT "/examples/" + file), factor, variesUnlessGiven),
        outcome);
    for (int i = 0; i < runs; ++i) {
        follower.run(static_cast<std::uint64_t>(i) * 10, stepsOfRun);
    }
    EXPECT_GT(outcome.components.said(), underSanitizers ? -1 : 20);
    expectCalibrated(file, outcome);
}

TEST(Calibration, OfThePumpingStation)
{
    expectCalibrated("water/station.itms", 100.0, atMost(200));
}

TEST(Calibration, OfThePowerSupply)
{
    expectCalibrated("power/grid.itms", 100.0, atMost(60));
}

TEST(Calibration, OfTheVentilation)
{
    expectCalibrated("guide/plant.itms", 60.0, atMost(600));
}

// With fewer faults than the example has: a second one is seldom seen beside a first one, and as long as it is not seen nothing is
// said of it.
TEST(Calibration, OfTheAdder)
{
    expectCalibrated("circuits/full-adder.itms", 0.25, atMost(600));
}

TEST(Calibration, OfRandomPlantsWithInputsThatPersist)
{
    written::PlantTextOptions options;
    options.observedPercent = 100;
    options.inputPercent = 100;
    options.rarestFault = 10;
    options.commonestFault = 150;
    Outcome outcome;
    for (std::uint64_t seed = 0; outcome.runs < atMost(3000); ++seed) {
        Random random(seed);
        const language::ReadResult read = language::readModelText(
            "plant.itms", written::text(written::randomPlantText(random, options)));
        if (!read.model) continue; // its laws contradict one another
        DrawnFollower follower(withRates(read, 1.0, variesUnlessGiven), outcome);
        for (std::uint64_t i = 0; i < 5; ++i) {
            follower.run(seed * 100 + i * 10, stepsOfRun);
        }
    }
    expectCalibrated("random plants", outcome);
}

} // namespace
