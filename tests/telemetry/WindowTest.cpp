// Windows and what is computed from channels, compared with an evaluator that looks at the whole history each time.
#include "telemetry/ComputedChannels.h"
#include "tests/support/Sanitized.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <random>

namespace {

using plant::ChannelExpression;
using telemetry::ComputedChannels;
using telemetry::ReaderState;
using telemetry::Window;
using Kind = ChannelExpression::Kind;
using Number = std::optional<double>;
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

constexpr double windowGap = 1.5;

struct Moment {
    double t = 0;
    std::vector<Number> channels;
};

ChannelExpression constantOf(double number)
{
    return {Kind::constant, number, {}, {}};
}
ChannelExpression channelOf(int number)
{
    return {Kind::channel, 0, std::to_string(number), {}};
}
ChannelExpression operation(Kind kind, std::vector<ChannelExpression> operands, double seconds = 0)
{
    return {kind, seconds, {}, std::move(operands)};
}

// What an expression is after the moments, by its definition and nothing else.
class Obvious {
public:
    explicit Obvious(const std::vector<Moment>& moments) : moments_(moments) {}

    Number value(const ChannelExpression& expression, std::size_t at) const
    {
        const Number found = found_(expression, at);
        return found && std::isfinite(*found) ? found : std::nullopt;
    }

private:
    struct Reading {
        double t;
        double value;
    };

    Number found_(const ChannelExpression& expression, std::size_t at) const
    {
        if (expression.kind == Kind::constant) return expression.number;
        if (expression.kind == Kind::channel)
            return moments_[at].channels[std::stoul(expression.channel)];
        if (plant::isWindow(expression.kind)) return window(expression, at);
        std::vector<double> operands;
        for (const ChannelExpression& operand : expression.operands) {
            const Number number = value(operand, at);
            if (!number) return std::nullopt;
            operands.push_back(*number);
        }
        switch (expression.kind) {
        case Kind::negation: return -operands[0];
        case Kind::absolute: return std::abs(operands[0]);
        case Kind::sum: return operands[0] + operands[1];
        case Kind::difference: return operands[0] - operands[1];
        case Kind::product: return operands[0] * operands[1];
        case Kind::quotient: return operands[0] / operands[1];
        case Kind::least: return *std::min_element(operands.begin(), operands.end());
        default: return *std::max_element(operands.begin(), operands.end());
        }
    }

    Number window(const ChannelExpression& expression, std::size_t at) const
    {
        const double seconds = expression.number;
        const double hole = std::max(windowGap, seconds / 4);
        const double now = moments_[at].t;
        const double begin = now - seconds;
        std::vector<Reading> readings;
        for (std::size_t i = 0; i <= at; ++i) {
            if (const Number number = value(expression.operands[0], i))
                readings.push_back({moments_[i].t, *number});
        }
        if (expression.kind == Kind::ago) {
            Number result;
            for (const Reading& reading : readings) {
                if (reading.t <= begin) {
                    result.reset();
                    if (begin - reading.t <= hole) result = reading.value;
                }
            }
            return result;
        }
        if (readings.empty() || readings.back().t != now) return std::nullopt;
        // Behind the last hole.
        std::size_t from = 0;
        for (std::size_t i = 1; i < readings.size(); ++i) {
            if (readings[i].t - readings[i - 1].t > hole) from = i;
        }
        readings.erase(readings.begin(), readings.begin() + static_cast<std::ptrdiff_t>(from));
        if (readings.front().t > begin) return std::nullopt;
        double area = 0;
        double least = INFINITY;
        double greatest = -INFINITY;
        Reading before = readings.front();
        for (std::size_t i = 1; i < readings.size(); ++i) {
            if (readings[i].t <= begin) {
                before = readings[i];
                continue;
            }
            area += readings[i].value * (readings[i].t - std::max(readings[i - 1].t, begin));
            least = std::min(least, readings[i].value);
            greatest = std::max(greatest, readings[i].value);
        }
        switch (expression.kind) {
        case Kind::mean: return area / seconds;
        case Kind::minimum: return least;
        case Kind::maximum: return greatest;
        case Kind::spread: return greatest - least;
        default: return (readings.back().value - before.value) / (now - before.t);
        }
    }

    const std::vector<Moment>& moments_;
};

class RandomExpressions {
public:
    explicit RandomExpressions(unsigned seed) : source_(seed) {}

    int below(int count) { return static_cast<int>(source_() % static_cast<unsigned>(count)); }

    // Times and numbers are multiples of 1/8 and small: sums of them are exact, whatever their order.
    std::vector<Moment> moments(std::size_t count)
    {
        std::vector<Moment> made;
        double t = 0;
        for (std::size_t i = 0; i < count; ++i) {
            t += below(12) == 0 ? 1 + below(8) : 0.125 * (1 + below(8));
            Moment moment{t, {}};
            for (int each = 0; each < 3; ++each) {
                moment.channels.push_back(below(8) == 0 ? Number() : Number(below(17) - 8));
            }
            made.push_back(std::move(moment));
        }
        return made;
    }

    ChannelExpression expression(int depth)
    {
        if (depth == 0 || below(4) == 0)
            return below(4) == 0 ? constantOf(below(5) - 2) : channelOf(below(3));
        const Kind kind = static_cast<Kind>(static_cast<int>(Kind::negation) + below(14));
        const double seconds = plant::isWindow(kind) ? 0.125 * (1 + below(48)) : 0;
        const bool one = kind == Kind::negation || kind == Kind::absolute || plant::isWindow(kind);
        const int count = one                                             ? 1
                          : kind == Kind::least || kind == Kind::greatest ? 2 + below(2)
                                                                          : 2;
        std::vector<ChannelExpression> operands;
        for (int i = 0; i < count; ++i) {
            operands.push_back(expression(depth - 1));
        }
        return operation(kind, std::move(operands), seconds);
    }

private:
    std::mt19937 source_;
};

ComputedChannels::Handle addExpression(ComputedChannels& computed,
                                       const ChannelExpression& expression)
{
    // All channels are operands of something, so that each may be read.
    for (int i = 0; i < 3; ++i) {
        computed.add(channelOf(i), windowGap, [](const std::string& name) {
            return static_cast<std::uint32_t>(std::stoul(name));
        });
    }
    return computed.add(expression, windowGap, [](const std::string& name) {
        return static_cast<std::uint32_t>(std::stoul(name));
    });
}

Number takeMoment(ComputedChannels& computed, ComputedChannels::Handle handle, const Moment& moment)
{
    for (std::uint32_t i = 0; i < moment.channels.size(); ++i) {
        if (moment.channels[i]) computed.read(i, *moment.channels[i]);
    }
    computed.advance(moment.t);
    return computed.value(handle);
}

bool isNear(const Number& a, const Number& b)
{
    if (!a || !b) return a.has_value() == b.has_value();
    return std::abs(*a - *b) <= 1e-9 * std::max({1.0, std::abs(*a), std::abs(*b)});
}

TEST(ComputedChannels, AreAsTheObviousEvaluatorSays)
{
    std::size_t known = 0;
    for (unsigned seed = 1; seed <= fewerUnderSanitizers(400U); ++seed) {
        RandomExpressions random(seed);
        const std::vector<Moment> moments = random.moments(80);
        const ChannelExpression expression = random.expression(3);
        const Obvious obvious(moments);
        ComputedChannels computed;
        const auto handle = addExpression(computed, expression);
        for (std::size_t i = 0; i < moments.size(); ++i) {
            const Number got = takeMoment(computed, handle, moments[i]);
            const Number wanted = obvious.value(expression, i);
            ASSERT_TRUE(isNear(got, wanted))
                << "seed " << seed << ", moment " << i << ", " << plant::textOf(expression) << ": "
                << got.value_or(NAN) << " and not " << wanted.value_or(NAN);
            known += got ? 1 : 0;
        }
    }
    EXPECT_GT(known, fewerUnderSanitizers(5000U));
}

TEST(ComputedChannels, GoOnFromTheirStateToTheBit)
{
    for (unsigned seed = 1; seed <= 100; ++seed) {
        RandomExpressions random(seed);
        std::vector<Moment> moments = random.moments(60);
        for (Moment& moment : moments) {
            for (Number& number : moment.channels) {
                if (number) number = *number * 0.1 + 1e-3; // sums of these depend on their order
            }
        }
        const ChannelExpression expression = random.expression(3);
        ComputedChannels whole;
        const auto handle = addExpression(whole, expression);
        ComputedChannels rest;
        addExpression(rest, expression);
        const std::size_t cut = 10 + seed % 40;
        for (std::size_t i = 0; i < moments.size(); ++i) {
            if (i == cut) rest.restore(whole.state());
            const Number wanted = takeMoment(whole, handle, moments[i]);
            if (i >= cut) {
                ASSERT_EQ(takeMoment(rest, handle, moments[i]), wanted) << seed << " " << i;
                ASSERT_EQ(rest.state(), whole.state());
            }
        }
    }
}

std::vector<Number> windowValues(Kind kind, double seconds,
                                 const std::vector<std::pair<double, Number>>& readings)
{
    Window window(kind, seconds, windowGap);
    std::vector<Number> all;
    for (const auto& [t, number] : readings) {
        all.push_back(window.next(t, number));
    }
    return all;
}

TEST(Window, HasNoValueUntilItIsCovered)
{
    EXPECT_THAT(windowValues(Kind::mean, 3, {{0, 9}, {1, 1}, {2, 2}, {3, 6}, {4, 1}}),
                ElementsAre(Eq(std::nullopt), Eq(std::nullopt), Eq(std::nullopt), Optional(3.0),
                            Optional(3.0)));
}

TEST(Window, WeighsReadingsWithTheTimeForWhichTheyStand)
{
    EXPECT_THAT(windowValues(Kind::mean, 2, {{0, 5}, {1, 2}, {1.5, 4}, {3, 8}}).back(),
                Optional((4 * 0.5 + 8 * 1.5) / 2));
}

TEST(Window, BeginsAnewBehindAHole)
{
    EXPECT_THAT(windowValues(Kind::maximum, 2, {{0, 5}, {1, 2}, {2, 4}, {4, 8}, {5, 1}, {6, 1}}),
                ElementsAre(Eq(std::nullopt), Eq(std::nullopt), Optional(4.0), Eq(std::nullopt),
                            Eq(std::nullopt), Optional(1.0)));
}

TEST(Window, HasNoValueWhereThereIsNoReading)
{
    EXPECT_THAT(windowValues(Kind::minimum, 1, {{0, 5}, {1, 2}, {1.5, {}}, {2, 4}}),
                ElementsAre(Eq(std::nullopt), Optional(2.0), Eq(std::nullopt), Optional(4.0)));
}

TEST(Window, GivesAChangePerSecondAndAnEarlierReading)
{
    EXPECT_THAT(windowValues(Kind::rate, 2, {{0, 5}, {1, 2}, {2, 4}, {3, 8}}),
                ElementsAre(Eq(std::nullopt), Eq(std::nullopt), Optional(-0.5), Optional(3.0)));
    EXPECT_THAT(windowValues(Kind::ago, 2, {{0, 5}, {1, 2}, {2, {}}, {3.5, {}}, {4.75, {}}}),
                ElementsAre(Eq(std::nullopt), Eq(std::nullopt), Optional(5.0), Optional(2.0),
                            Eq(std::nullopt)));
}

TEST(Window, HasNoErrorThatGrowsWithTime)
{
    Window window(Kind::mean, 10, windowGap);
    window.next(0, 1e15);
    Number last;
    for (int t = 1; t <= 100000; ++t) {
        last = window.next(t, t % 1000 == 1 ? 1e15 : 0.1);
        if (t % 1000 == 500) {
            ASSERT_NEAR(last.value_or(NAN), 0.1, 1e-15) << t;
        }
    }
}

TEST(Window, RefusesAStateThatIsNone)
{
    const auto restore = [](const ReaderState::Window& state) {
        Window(Kind::mean, 2, windowGap).restore(state);
    };
    EXPECT_NO_THROW(restore({{{0, 1}, {1, 1}, {2, 1}}, 1}));
    EXPECT_THROW(restore({{{0, 1}, {1, 1}, {2, 1}}, 2}), std::invalid_argument);
    EXPECT_THROW(restore({{{0, 1}, {0, 1}}, 0}), std::invalid_argument);
    EXPECT_THROW(restore({{{0, NAN}}, 0}), std::invalid_argument);
}

} // namespace
