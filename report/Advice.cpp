#include "report/Advice.h"

#include "plant/Names.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

// What is smaller is the rounding of sums.
constexpr double noEntropy = 1e-12;

double bits(double nats)
{
    return nats < noEntropy ? 0.0 : nats / std::log(2.0);
}

std::optional<std::string> channelOf(const plant::Bindings& bindings, const StateVar* variable)
{
    for (const plant::ChannelBinding& binding : bindings.channels) {
        if (binding.kind == plant::ChannelBinding::Kind::observation &&
            binding.variable == variable) {
            return binding.channel;
        }
    }
    return std::nullopt;
}

OutcomeReport outcomeReport(const plant::Plant& plant, const monitor::Outcome& outcome)
{
    OutcomeReport report{
        plant.atom(outcome.value)->value, outcome.probability, bits(outcome.entropy), {}};
    for (std::size_t i = 0; i < outcome.hypotheses.size(); ++i) {
        if (outcome.hypotheses[i] > 0.0) {
            report.remaining.push_back({i + 1, outcome.hypotheses[i]});
        }
    }
    // Equal ones in their order, whatever the last bits say.
    const auto rounded = [](double value) { return std::round(value * 1e9); };
    std::stable_sort(report.remaining.begin(), report.remaining.end(),
                     [&](const RemainingExplanation& a, const RemainingExplanation& b) {
                         return rounded(a.probability) > rounded(b.probability);
                     });
    return report;
}

} // namespace

AdviceReport adviceReport(const plant::Plant& plant, const plant::Bindings& bindings,
                          const monitor::TrackAnswer& answer, const monitor::Advice& advice)
{
    AdviceReport report{
        stepReport(plant, answer), bits(advice.entropy), {}, advice.useless, advice.unmeasurable};
    if (advice.limit != SearchLimit::none) {
        report.step.complete = false;
        report.step.limit = advice.limit;
    }
    for (const monitor::Measurement& measurement : advice.measurements) {
        const StateVar* variable = plant.variable(measurement.variable).variable;
        MeasurementReport one{plant::nameOf(*variable),
                              channelOf(bindings, variable),
                              bits(measurement.expectedEntropy),
                              {}};
        for (const monitor::Outcome& outcome : measurement.outcomes) {
            one.outcomes.push_back(outcomeReport(plant, outcome));
        }
        report.measurements.push_back(std::move(one));
    }
    return report;
}

} // namespace report
