#include "language/json/JsonTransitions.h"

#include "language/meaning/Numbers.h"
#include "plant/LikeliestSet.h"

#include <algorithm>

namespace language {

void JsonTransitions::add(const JsonNode& node)
{
    const std::size_t index = index_++;
    if (!node.isObject({"kind", "from", "to", "probability"}, {"name", "guard"})) return;
    const auto kind = kindOf(node["kind"]);
    Atom* from = names_.atom(node["from"]);
    Atom* to = names_.atom(node["to"]);
    const auto probability = node["probability"].probability();
    std::optional<Conjunction> guard{std::in_place};
    if (node.has("guard")) guard = guardOf(node["guard"]);
    if (!kind || !from || !to || !probability || !guard || !fits(node, *kind, from, to)) return;
    const bool again = !changes_.empty() && changes_.back().index + 1 == index &&
                       changes_.back().kind == *kind && changes_.back().from == from &&
                       changes_.back().to == to && changes_.back().probability == *probability;
    if (again) {
        changes_.back().alternatives.push_back(*guard);
        changes_.back().index = index;
    } else {
        changes_.push_back({*kind, from, to, {*guard}, *probability, index});
        const auto [known, isNew] = leaving_.try_emplace(from);
        if (isNew) left_.push_back(from);
        known->second.push_back(&changes_.back());
    }
    ++count_;
    make(changes_.back());
}

void JsonTransitions::make(const Change& change)
{
    const Conjunction& guard = change.alternatives.back();
    switch (change.kind) {
    case Kind::nominal: builder_.nominal(change.from, change.to, guard, *change.probability); break;
    case Kind::fault: builder_.fault(change.from, change.to, *change.probability, guard); break;
    case Kind::idle: builder_.idle(change.from, *change.probability, guard); break;
    }
}

std::optional<JsonTransitions::Kind> JsonTransitions::kindOf(const JsonNode& node)
{
    const auto written = node.text();
    if (!written) return std::nullopt;
    for (const Kind kind : {Kind::nominal, Kind::fault, Kind::idle}) {
        if (*written == word(kind)) return kind;
    }
    node.error("found " + text::quoted(*written), "nominal, fault, idle",
               didYouMean(*written, {"nominal", "fault", "idle"}));
    return std::nullopt;
}

const char* JsonTransitions::word(Kind kind)
{
    return kind == Kind::fault ? "fault" : kind == Kind::idle ? "idle" : "nominal";
}

bool JsonTransitions::fits(const JsonNode& node, Kind kind, const Atom* from, const Atom* to) const
{
    const JsonNode target = node["to"];
    if (from->stateVar->type != "Mode") {
        node["from"].error(text::quoted(from->id) + " is not the value of a mode",
                           "a value of a mode");
        return false;
    }
    if (from->stateVar != to->stateVar) {
        target.error(text::quoted(to->id) + " is a value of another variable",
                     "a value of " +
                         text::quoted(from->stateVar->comp->name + "." + from->stateVar->name));
        return false;
    }
    if (kind == Kind::idle && from != to) {
        target.error("an idle transition that leads to another value", text::quoted(from->id));
        return false;
    }
    if (kind == Kind::fault && from == to) {
        target.error("a fault that leads from " + text::quoted(from->id) + " to itself",
                     "another value of the mode");
        return false;
    }
    if (!node.has("name")) return true;
    const JsonNode named = node["name"];
    const auto name = named.text();
    if (!name) return false;
    const std::string fixed = kind == Kind::nominal ? "Nominal"
                              : kind == Kind::idle  ? "idle"
                                                    : to->value;
    if (*name == fixed) return true;
    named.error("found " + text::quoted(*name), text::quoted(fixed) + ", or no name");
    return false;
}

std::optional<JsonTransitions::Conjunction> JsonTransitions::guardOf(const JsonNode& node) const
{
    if (!node.isArray()) return std::nullopt;
    Conjunction guard;
    bool sound = true;
    for (std::size_t i = 0; i < node.size(); ++i) {
        bool negated = false;
        Atom* atom = names_.literal(node[i], negated);
        sound = sound && atom;
        if (atom) guard.emplace_back(!negated, atom);
    }
    if (!sound) return std::nullopt;
    if (!plant::canHold(guard)) {
        node.error("this guard can never hold", "literals that can hold together");
        return std::nullopt;
    }
    return guard;
}

void JsonTransitions::checkSums(const JsonNode& list) const
{
    for (const Atom* from : left_) {
        checkSum(list, leaving_.at(from));
    }
}

// As for model files: an idle transition is what happens when no nominal one does.
void JsonTransitions::checkSum(const JsonNode& list, const std::vector<const Change*>& leaving) const
{
    for (const Kind kind : {Kind::nominal, Kind::idle}) {
        std::vector<const Change*> together;
        for (const Change* change : leaving) {
            const bool here = change->kind == Kind::fault || change->kind == kind;
            if (here && *change->probability > 0) together.push_back(change);
        }
        const auto likeliest = plant::LikeliestSet<const Change>(std::move(together)).find();
        double sum = 0;
        std::string named;
        for (const Change* change : likeliest) {
            sum += *change->probability;
            named += (named.empty() ? "" : ", ") + std::string(word(change->kind)) + " -> " +
                     change->to->value + " " + shown(*change->probability) + " (" +
                     list[change->index].pointer() + ")";
        }
        if (sum <= 1 + plant::probabilityTolerance) continue;
        list[likeliest.back()->index].error("the transitions from " +
                                                text::quoted(likeliest.back()->from->id) +
                                                " that are possible at once add up to " + shown(sum),
                                            "at most 1", named);
        return;
    }
}

} // namespace language
