// Events as a person reads them: one line when something begins, one when it ends.
#include "report/Events.h"
#include "text/Wording.h"

#include <fmt/format.h>

namespace report {

namespace {

constexpr std::size_t momentColumns = 20;
constexpr std::size_t numberColumns = 6;
constexpr std::size_t wordColumns = 7;

std::string inSummary(const EventReport::All& all)
{
    std::string text =
        fmt::format("{}, {}", text::counted(all.steps, "step"), text::counted(all.events, "event"));
    if (all.events > 0) text += fmt::format(", in {} together", duration(all.seconds));
    text += ".";
    if (!all.open.empty()) {
        std::vector<std::string> names;
        for (const auto& [number, what] : all.open) {
            names.push_back(fmt::format("{} ({})", number, what));
        }
        text += fmt::format(" Not over: {}.", text::listed(names));
    }
    if (all.linesLeftOut > 0)
        text += fmt::format(" {} in error {} left out.", text::counted(all.linesLeftOut, "line"),
                            all.linesLeftOut == 1 ? "was" : "were");
    return text;
}

} // namespace

std::string EventTable::heading() const
{
    return colours_.faint(left("t", momentColumns) + right("event", numberColumns) + "  " +
                          left("", wordColumns) + right("p", probabilityColumns) + "  what") +
           "\n";
}

std::string EventTable::rows(const EventReport& event) const
{
    if (event.all) return colours_.printable("\n" + wrapped("", inSummary(*event.all)));
    const bool ends = event.phase == EventReport::Phase::ends;
    const std::string word = left(ends ? "ends" : "begins", wordColumns);
    const std::string head = left(moment(event.t, event.clock), momentColumns) +
                             right(std::to_string(event.number), numberColumns) + "  " +
                             (ends ? colours_.green(word) : colours_.red(word)) +
                             right(percent(event.p), probabilityColumns) + "  ";
    std::string what = nameOf(event);
    if (ends) what += fmt::format(", after {}", duration(event.t - event.start));
    if (!ends && event.kind == EventReport::Kind::fault && event.since < event.step)
        what += ", " + sinceInWords(event.since);
    constexpr std::size_t columns =
        momentColumns + numberColumns + 2 + wordColumns + probabilityColumns + 2;
    const std::string lines = wrapped(std::string(columns, ' '), what);
    return colours_.printable(head + lines.substr(columns));
}

} // namespace report
