// A calibration as a person reads it.
#include "plant/Names.h"
#include "report/Calibration.h"
#include "text/Wording.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t quantileColumns = 8;

// In 7 characters at most.
std::string fourDigits(double number)
{
    const double size = std::abs(number);
    if (size >= 1e5 || (size > 0 && size < 0.01)) {
        std::string text = fmt::format("{:.1e}", number); // 1.8e-03
        const std::size_t exponent = text.find('e') + 2;
        if (text[exponent] == '0') text.erase(exponent, 1);
        if (text[exponent - 1] == '+') text.erase(exponent - 1, 1);
        return text;
    }
    if (size >= 1000) return fmt::format("{:.0f}", number);
    return fmt::format("{:.4g}", number).substr(0, 7);
}

std::string quantileRow(const assess::QuantileSketch& readings)
{
    const auto& shares = assess::ChannelReadings::shares;
    std::string row;
    for (const double value : readings.quantiles({shares.begin(), shares.end()})) {
        row += right(fourDigits(value), quantileColumns);
    }
    return row;
}

// How often the readings are in each sixteenth of their range, the outermost 1 % left out.
std::string sparkline(const assess::QuantileSketch& readings)
{
    static constexpr std::array<const char*, 8> bars{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
    constexpr std::size_t places = 16;
    const std::vector<double> ends = readings.quantiles({0.01, 0.99});
    const double width = ends.back() - ends.front();
    if (!(width > 0)) return "";
    std::array<double, places> counts{};
    for (const auto& [value, weight] : readings.weighted()) {
        if (value < ends.front() || value > ends.back()) continue;
        const auto place = static_cast<std::size_t>((value - ends.front()) / width * places);
        counts[std::min(place, places - 1)] += weight;
    }
    const double most = *std::max_element(counts.begin(), counts.end());
    std::string text;
    for (const double count : counts) {
        if (count == 0) {
            text += " ";
            continue;
        }
        const auto height = static_cast<std::size_t>(
            std::lround(count / most * static_cast<double>(bars.size() - 1)));
        text += bars[std::min(height, bars.size() - 1)];
    }
    return text;
}

std::string adviceWords(const assess::LimitAdvice& one)
{
    if (one.computed) return "a limit that is computed: calibrate the difference to it";
    std::string text = fmt::format("limit {}: {} of the readings are below", fourDigits(one.limit),
                                   percent(one.shareBelow));
    if (one.suggested) {
        text += fmt::format("; suggested {}", fourDigits(*one.suggested));
    } else if (one.separates) {
        text += ", without a gap between";
    }
    return text;
}

std::string valueWords(const assess::ChannelReadings& channel,
                       const assess::ChannelStatistics& statistics)
{
    const auto& counts = statistics.values().at(channel.channel().variable);
    std::size_t all = 0;
    for (const auto& [value, count] : counts) {
        all += count;
    }
    std::string text;
    for (const Atom* value : *channel.channel().variable->atomLinks) {
        const auto count = counts.find(value);
        if (count == counts.end()) continue;
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", value->value,
                            percent(static_cast<double>(count->second) / static_cast<double>(all)));
    }
    return text.empty() ? "not observed" : text;
}

std::string channelLines(const assess::ChannelReadings& channel,
                         const assess::ChannelStatistics& statistics, const Colours& colours)
{
    const plant::ChannelBinding& binding = channel.channel();
    const std::string name = plant::nameOf(*binding.variable);
    std::string text = "\n" + colours.bold(name);
    if (binding.channel != name) text += "  " + binding.channel;
    text += "\n" + wrapped("  ", valueWords(channel, statistics));
    if (channel.all().count() == 0) return text;
    const std::string drawing = sparkline(channel.all());
    text += fmt::format("  {}{}{}\n", text::counted(channel.all().count(), "reading"),
                        drawing.empty() ? "" : "  ", drawing);
    text += "  " + quantileRow(channel.all()) + "\n";
    if (channel.states().size() > 1) {
        for (const assess::ChannelReadings::State& state : channel.states()) {
            text +=
                wrapped("  while ", fmt::format("{}: {}", differingCommands(channel, state),
                                                text::counted(state.readings.count(), "reading")));
            text += "  " + quantileRow(state.readings) + "\n";
        }
        if (channel.inOtherStates() > 0)
            text += fmt::format("  {} while other commands held\n",
                                text::counted(channel.inOtherStates(), "reading"));
    }
    for (const assess::LimitAdvice& one : channel.limits()) {
        text += wrapped("  ", adviceWords(one));
    }
    const auto* table = std::get_if<plant::ThresholdTable>(&binding.translation);
    if (const auto within = channel.within(); within && table)
        text += fmt::format("  within {}: suggested {}\n", fourDigits(table->hysteresis),
                            fourDigits(*within));
    if (channel.all().rankError() > 0)
        text += fmt::format("  the rank of a quantile may be off by {}\n",
                            percent(channel.all().rankError()));
    return text;
}

std::string lawLines(const ViolatedLaw& one, Clock clock)
{
    std::string text = wrapped("  ", one.law.text);
    if (!one.law.file.empty())
        text += fmt::format("    {}:{}:{}\n", one.law.file, one.law.line, one.law.column);
    std::vector<std::string> observed;
    for (const auto& [value, steps] : one.observed) {
        observed.push_back(fmt::format("{} ({})", value, steps));
    }
    return text +
           wrapped("    ",
                   fmt::format("{}, first at step {} ({}){}{}", text::counted(one.steps, "step"),
                               one.firstStep, moment(one.firstTime, clock),
                               observed.empty() ? "" : "; observed ", text::listed(observed)));
}

} // namespace

std::string differingCommands(const assess::ChannelReadings& channel,
                              const assess::ChannelReadings::State& state)
{
    std::string text;
    for (std::size_t i = 0; i < state.commands.size(); ++i) {
        const auto differs = [&](const assess::ChannelReadings::State& other) {
            return other.commands[i] != state.commands[i];
        };
        if (std::none_of(channel.states().begin(), channel.states().end(), differs)) continue;
        text += fmt::format("{}{} = {}", text.empty() ? "" : ", ",
                            plant::nameOf(*state.commands[i]->stateVar), state.commands[i]->value);
    }
    return text;
}

std::string calibrationTable(const CalibrationReport& report, const Colours& colours)
{
    std::string text =
        fmt::format("{}, {} of them without a fault\n", text::counted(report.steps, "step"),
                    text::grouped(report.statistics.steps()));
    std::string heading = "  ";
    for (const char* name : {"min", "1 %", "5 %", "25 %", "50 %", "75 %", "95 %", "99 %", "max"}) {
        heading += right(name, quantileColumns);
    }
    text += colours.faint(heading) + "\n";
    for (const assess::ChannelReadings& channel : report.statistics.channels()) {
        text += channelLines(channel, report.statistics, colours);
    }
    if (report.statistics.steps() == 0) return colours.printable(text);
    const double share =
        static_cast<double>(report.contradicted) / static_cast<double>(report.statistics.steps());
    text +=
        "\n" + wrapped("", fmt::format("{} without a fault contradict{} the model ({}){}",
                                       text::counted(report.contradicted, "step"),
                                       report.contradicted == 1 ? "s" : "", percent(share),
                                       report.laws.empty() ? "." : ". They rest on these laws:"));
    for (const ViolatedLaw& law : report.laws) {
        text += lawLines(law, report.clock);
    }
    return colours.printable(text);
}

} // namespace report
