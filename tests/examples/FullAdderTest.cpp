// A circuit written in the model language and the same circuit as a netlist have the same diagnoses.
#include "netlist/BenchReader.h"
#include "netlist/CircuitModel.h"
#include "tests/examples/ExamplePlant.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace {

// A step of the adder: what is at the inputs, and what is seen at the outputs; -1 is not seen.
struct Adder {
    int a, b, cin, sum, cout;
};

// Faulty gates, and how probable that is.
using Diagnoses = std::map<std::set<std::string>, double>;

class Solver {
public:
    // `atom` gives the identifier of a signal's value.
    Solver(std::unique_ptr<plant::Model> model,
           std::function<std::string(const std::string&, int)> atom)
        : active_(std::move(model)), atom_(std::move(atom))
    {
    }

    Diagnoses solve(const Adder& adder, int maxFaults)
    {
        monitor::StepInput input;
        const std::pair<const char*, int> signals[] = {{"a", adder.a},
                                                       {"b", adder.b},
                                                       {"cin", adder.cin},
                                                       {"sum", adder.sum},
                                                       {"cout", adder.cout}};
        for (const auto& [signal, value] : signals) {
            if (value >= 0) input.observations.push_back(active_.index(atom_(signal, value)));
        }
        monitor::StepSettings settings;
        settings.maxFaults = maxFaults;
        const monitor::StepAnswer answer =
            monitor::StepSolver(active_.engine, *active_.plant)
                .solve(monitor::initialLabels(*active_.plant), input, settings);
        EXPECT_TRUE(answer.complete);
        Diagnoses result;
        for (const monitor::Candidate& candidate : answer.candidates) {
            std::set<std::string> gates;
            for (const plant::AtomIndex mode : candidate.modes) {
                gates.insert(active_.plant->atom(mode)->stateVar->comp->name);
            }
            result[gates] = candidate.probability;
        }
        return result;
    }

private:
    ActivePlant active_;
    std::function<std::string(const std::string&, int)> atom_;
};

Solver fromLanguage()
{
    return {std::move(language::readModel(examplePath("circuits/full-adder.itms")).model),
            [](const std::string& signal, int value) {
                return signal + ".out=" + (value == 1 ? "one" : "zero");
            }};
}

Solver fromNetlist()
{
    const netlist::BenchResult read =
        netlist::readBenchFile(examplePath("circuits/full-adder.bench"));
    return {std::move(netlist::buildModel(*read.circuit).model),
            [](const std::string& signal, int value) {
                return signal + ".out=" + std::to_string(value);
            }};
}

// All inputs, and all that may be seen of the outputs.
std::vector<Adder> allSteps()
{
    std::vector<Adder> steps;
    for (int inputs = 0; inputs < 8; ++inputs) {
        for (const int sum : {-1, 0, 1}) {
            for (const int cout : {-1, 0, 1}) {
                steps.push_back({inputs & 1, inputs >> 1 & 1, inputs >> 2 & 1, sum, cout});
            }
        }
    }
    return steps;
}

std::vector<Diagnoses> diagnosesOfAllSteps(Solver solver, int maxFaults)
{
    std::vector<Diagnoses> result;
    for (const Adder& step : allSteps()) {
        result.push_back(solver.solve(step, maxFaults));
    }
    return result;
}

class FullAdder : public testing::TestWithParam<int> {
    MutedTrace muted_;
};

TEST_P(FullAdder, HasTheSameDiagnosesInTheLanguageAndAsANetlist)
{
    const std::vector<Diagnoses> written = diagnosesOfAllSteps(fromLanguage(), GetParam());
    const std::vector<Diagnoses> read = diagnosesOfAllSteps(fromNetlist(), GetParam());
    std::size_t several = 0;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const Adder at = allSteps()[i];
        SCOPED_TRACE(testing::Message() << at.a << at.b << at.cin << " " << at.sum << at.cout);
        ASSERT_EQ(written[i].size(), read[i].size());
        several += written[i].size() > 1 ? 1U : 0U;
        for (const auto& [gates, probability] : written[i]) {
            const auto same = read[i].find(gates);
            ASSERT_NE(same, read[i].end()) << testing::PrintToString(gates);
            EXPECT_NEAR(probability, same->second, 1e-9);
        }
    }
    EXPECT_GT(several, 20U);
}

INSTANTIATE_TEST_SUITE_P(Faults, FullAdder, testing::Values(1, 2, 3, 5));

TEST_P(FullAdder, SuspectsNothingWhereItAdds)
{
    Solver solver = fromLanguage();
    const Diagnoses nothing{{{}, 1.0}};
    for (const Adder& at : allSteps()) {
        const int total = at.a + at.b + at.cin;
        if (at.sum == total % 2 && at.cout == total / 2) {
            EXPECT_EQ(solver.solve(at, GetParam()), nothing);
        }
    }
}

// 1 + 1 without a carry: the gates of the carry that are at 1.
TEST(FullAdderExample, WithoutACarryHasTheGatesOfTheCarryAsSuspects)
{
    const MutedTrace muted;
    const Diagnoses diagnoses = fromLanguage().solve({1, 1, 0, 0, 0}, 1);
    ASSERT_EQ(diagnoses.size(), 2U);
    EXPECT_EQ(diagnoses.count({"both"}), 1U);
    EXPECT_EQ(diagnoses.count({"cout"}), 1U);
}

} // namespace
