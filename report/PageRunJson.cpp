// The story of a run as a page's data has it: columns with an entry for each point of the timeline. Where the same entry comes
// many times on end, a column is pairs of an entry and how often it comes.
#include "report/CandidateJson.h"
#include "report/ConflictJson.h"
#include "report/Numbers.h"
#include "report/PageJson.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <set>

namespace report {

namespace {

using Json = nlohmann::ordered_json;
using Points = std::vector<const TimelinePoint*>;

std::string dumped(const Json& json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A number in as few characters as tell it apart on a screen.
std::string shortNumber(double number)
{
    return std::isfinite(number) ? fmt::format("{:.5g}", number) : "null";
}
std::string exactNumber(double number)
{
    return fmt::format("{}", number);
}

template <typename Text> std::string column(const Points& points, const Text& text)
{
    std::string json = "[";
    for (const TimelinePoint* point : points) {
        if (json.size() > 1) json += ',';
        json += text(*point);
    }
    return json + "]";
}

// Pairs of an entry and how many points have it.
template <typename Text> std::string runs(const Points& points, const Text& text)
{
    std::string json = "[";
    std::string last;
    std::size_t count = 0;
    const auto flush = [&] {
        if (count > 0) json += fmt::format("{}{},{}", json.size() > 1 ? "," : "", last, count);
    };
    for (const TimelinePoint* point : points) {
        std::string entry = text(*point);
        if (count > 0 && entry == last) {
            ++count;
            continue;
        }
        flush();
        last = std::move(entry);
        count = 1;
    }
    flush();
    return json + "]";
}

std::string flag(bool value)
{
    return value ? "1" : "0";
}

// Gives each explanation a number, those that say the same the same one.
class Explanations {
public:
    std::size_t number(const Believed& believed)
    {
        const TrackedExplanation* explanation = believed.explanation.get();
        const auto known = numbers_.find(explanation);
        if (known != numbers_.end()) return known->second;
        Json json = deviatingJson(explanation->modes);
        json["lost"] = explanation->lost;
        if (!explanation->misread.empty()) json["misread"] = explanation->misread;
        json["unexplained"] = explanation->unexplained;
        std::string text = dumped(json);
        const auto [same, isNew] = byText_.emplace(std::move(text), byText_.size());
        if (isNew) texts_.push_back(&same->first);
        return numbers_[explanation] = same->second;
    }

    std::string list() const
    {
        std::string json = "[";
        for (const std::string* text : texts_) {
            json += (json.size() > 1 ? ",\n" : "") + *text;
        }
        return json + "]";
    }

private:
    std::map<const TrackedExplanation*, std::size_t> numbers_;
    std::map<std::string, std::size_t> byText_;
    std::vector<const std::string*> texts_;
};

class RunWriter {
public:
    RunWriter(const Sink& sink, const PageStory& story)
        : sink_(sink), story_(story), points_(story.timeline().points())
    {
    }

    void write()
    {
        put("{\n");
        writeSteps();
        put(",\n\"candidates\":" + column(points_, [this](const TimelinePoint& point) {
                return "[" + weighed(point.shown.candidates) + "]";
            }));
        putRuns("groups", [](const TimelinePoint& point) {
            return fmt::format("[{}]", fmt::join(point.shown.groups, ","));
        });
        put(",\n\"events\":" + events());
        put(",\n\"explanations\":" + explanations_.list());
        writeComponents();
        writeModes();
        writeChannels();
        writeConflicts();
        put("}");
    }

private:
    void put(std::string text) const { sink_(withoutMarkup(std::move(text))); }
    template <typename Text> void putColumn(const char* name, const Text& text) const
    {
        put(fmt::format(",\n\"{}\":{}", name, column(points_, text)));
    }
    template <typename Text> void putRuns(const char* name, const Text& text) const
    {
        put(fmt::format(",\n\"{}\":{}", name, runs(points_, text)));
    }

    // Pairs of the number of an explanation and its probability.
    std::string weighed(const std::vector<Believed>& explanations)
    {
        std::string text;
        for (const Believed& one : explanations) {
            text += fmt::format("{}{},{}", text.empty() ? "" : ",", explanations_.number(one),
                                sixDigits(one.probability));
        }
        return text;
    }

    void writeSteps() const
    {
        Json counts = Json::object();
        for (const auto& [status, count] : story_.counts()) {
            counts[monitor::name(status)] = count;
        }
        put(fmt::format("\"steps\":{},\"stepsPerPoint\":{},\"counts\":{}", story_.steps(),
                        story_.timeline().stepsPerPoint(), dumped(counts)));
        put(",\n\"from\":" + (points_.empty() ? "null" : exactNumber(points_.front()->from)));
        putColumn("step", [](const auto& point) { return std::to_string(point.shown.step); });
        putColumn("t", [](const auto& point) { return exactNumber(point.shown.t); });
        if (story_.timeline().stepsPerPoint() > 1) {
            putColumn("first", [](const auto& point) { return std::to_string(point.first); });
            putColumn("last", [](const auto& point) { return std::to_string(point.last); });
        }
        putRuns("status", [](const auto& point) {
            return fmt::format("\"{}\"", monitor::name(point.shown.status));
        });
        putRuns("complete", [](const auto& point) { return flag(point.shown.complete); });
        putRuns("approximate", [](const auto& point) { return flag(point.shown.approximate); });
        putRuns("limit", [](const auto& point) {
            return fmt::format("\"{}\"", monitor::name(point.shown.limit));
        });
        putRuns("gap", [](const auto& point) {
            return point.shown.gap ? exactNumber(*point.shown.gap) : "null";
        });
        putRuns("fault", [](const auto& point) { return shortNumber(point.shown.fault); });
        putRuns("missing", [](const auto& point) { return shortNumber(point.shown.missing); });
        putRuns("silent", [](const auto& point) { return shortNumber(point.shown.silent); });
        putRuns("kept", [](const auto& point) { return std::to_string(point.shown.kept); });
        putRuns("dropped", [](const auto& point) { return std::to_string(point.shown.dropped); });
    }

    std::string events()
    {
        std::string json = "[";
        story_.events().each([&](const PageEvent& event) {
            json += fmt::format("{}[{},{},\"{}\",{}]", json.size() > 1 ? ",\n" : "", event.step,
                                exactNumber(event.t), monitor::name(event.status),
                                weighed(event.first));
        });
        return json + fmt::format("],\n\"eventsLeftOut\":{}", story_.events().leftOut());
    }

    void writeComponents() const
    {
        std::set<std::uint32_t> suspects;
        for (const TimelinePoint* point : points_) {
            for (const auto& [component, probability] : point->shown.components) {
                suspects.insert(component);
            }
        }
        put(",\n\"suspects\":[");
        const char* separator = "";
        for (const std::uint32_t suspect : suspects) {
            put(fmt::format("{}\n{{\"component\":{},\"p\":{}}}", separator, suspect,
                            runs(points_, [suspect](const TimelinePoint& point) {
                                for (const auto& [component, probability] : point.shown.components) {
                                    if (component == suspect) return shortNumber(probability);
                                }
                                return std::string("0");
                            })));
            separator = ",";
        }
        put("]");
    }

    void writeModes() const
    {
        put(",\n\"modes\":[");
        for (std::size_t i = 0; i < story_.modes().size(); ++i) {
            put(fmt::format("{}\n{{\"variable\":{},\"values\":{}}}", i > 0 ? "," : "",
                            story_.modes()[i], runs(points_, [i](const TimelinePoint& point) {
                                return std::to_string(point.shown.modes[i]);
                            })));
        }
        put("]");
    }

    void writeChannels() const
    {
        put(",\n\"channels\":[");
        for (std::size_t i = 0; i < story_.channels().size(); ++i) {
            const auto state = [i](const TimelinePoint& point) {
                const std::vector<ChannelState>& channels = point.shown.channels;
                return i < channels.size() ? channels[i] : ChannelState();
            };
            const auto any = [&](const auto& has) {
                return std::any_of(points_.begin(), points_.end(),
                                   [&](const TimelinePoint* point) { return has(state(*point)); });
            };
            std::string json = fmt::format(
                "{}\n{{\"read\":{},\"believed\":{}", i > 0 ? "," : "",
                runs(points_, [&](const auto& point) { return std::to_string(state(point).read); }),
                runs(points_,
                     [&](const auto& point) { return std::to_string(state(point).believed); }));
            if (any([](const ChannelState& one) { return one.held; })) {
                json += fmt::format(",\"held\":{}", runs(points_, [&](const auto& point) {
                                        return flag(state(point).held);
                                    }));
            }
            if (any([](const ChannelState& one) { return !std::isnan(one.low); })) {
                json += fmt::format(",\"low\":{}", column(points_, [&](const auto& point) {
                                        return shortNumber(state(point).low);
                                    }));
            }
            if (any([](const ChannelState& one) { return one.low < one.high; })) {
                json += fmt::format(",\"high\":{}", column(points_, [&](const auto& point) {
                                        return shortNumber(state(point).high);
                                    }));
            }
            put(json + "}");
        }
        put("]");
    }

    void writeConflicts() const
    {
        put(",\n\"conflicts\":[");
        std::size_t number = 0;
        story_.conflicts().each([&](const ExplainedConflict& conflict) {
            ExplainedConflict one = conflict;
            one.number = ++number;
            put((number > 1 ? ",\n" : "\n") + dumped(conflictJson(one)));
        });
        put(fmt::format("],\n\"conflictsLeftOut\":{}", story_.conflicts().leftOut()));
    }

    const Sink& sink_;
    const PageStory& story_;
    Points points_;
    Explanations explanations_;
};

} // namespace

std::string withoutMarkup(std::string json)
{
    for (std::size_t at = 0; (at = json.find('<', at)) != std::string::npos; at += 6) {
        json.replace(at, 1, "\\u003c");
    }
    return json;
}

void writePageJson(const Sink& sink, const PageFacts& facts, const language::ReadResult& model,
                   const plant::Plant& plant, const PageStory& story)
{
    const Json head = {{"format", "itms-report"},
                       {"v", 1},
                       {"model", facts.model},
                       {"telemetry", facts.telemetry},
                       {"interrupted", facts.interrupted},
                       {"linesLeftOut", facts.linesLeftOut}};
    std::string text = dumped(head);
    text.pop_back();
    sink(withoutMarkup(text + ",\n\"plant\":" + pagePlantJson(model, plant, story) + ",\n\"run\":"));
    RunWriter(sink, story).write();
    sink("}\n");
}

} // namespace report
