#include "language/json/JsonTransitions.h"

#include "plant/TransitionRules.h"

#include <array>

namespace language {

namespace {

constexpr std::array changeKinds{plant::ChangeKind::nominal, plant::ChangeKind::fault,
                                 plant::ChangeKind::repair, plant::ChangeKind::idle};

std::string nameOf(plant::ChangeKind kind, const Atom* to)
{
    switch (kind) {
    case plant::ChangeKind::nominal: return "Nominal";
    case plant::ChangeKind::fault: return to->value;
    case plant::ChangeKind::repair: return "Repair";
    case plant::ChangeKind::idle: return "idle";
    }
    return {};
}

} // namespace

// A model file has one statement for what are here several transitions, one behind the other, that differ in their guards: they
// are one change, whose probability counts once.
void JsonTransitions::add(const JsonNode& node)
{
    const std::size_t index = index_++;
    if (!node.isObject({"kind", "from", "to", "probability"}, {"name", "guard"})) return;
    const auto word = node["kind"].oneOf({plant::word(changeKinds[0]), plant::word(changeKinds[1]),
                                          plant::word(changeKinds[2]), plant::word(changeKinds[3])});
    Atom* from = names_.atom(node["from"]);
    Atom* to = names_.atom(node["to"]);
    const auto probability = node["probability"].probability();
    std::optional<plant::Conjunction> guard{std::in_place};
    if (node.has("guard")) guard = guardOf(node["guard"]);
    if (!word || !from || !to || !probability || !guard) return;
    const plant::ChangeKind kind = changeKinds[*word];
    if (!fits(node, kind, from, to)) return;
    const bool again = !changes_.empty() && last_ + 1 == index && changes_.back().kind == kind &&
                       changes_.back().from == from && changes_.back().to == to &&
                       changes_.back().probability == *probability;
    last_ = index;
    if (again) {
        changes_.back().alternatives.push_back(*guard);
        changes_.back().at = node.at();
        return;
    }
    changes_.push_back({kind, from, to, {*guard}, *probability, node.at()});
    const auto [known, isNew] = leaving_.try_emplace(from);
    if (isNew) left_.push_back(from);
    known->second.push_back(&changes_.back());
}

void JsonTransitions::finish()
{
    for (const Atom* from : left_) {
        plant::checkSum(leaving_.at(from));
    }
    for (const plant::Change& change : changes_) {
        builder_.change(change);
    }
}

bool JsonTransitions::fits(const JsonNode& node, plant::ChangeKind kind, const Atom* from,
                           const Atom* to) const
{
    const JsonNode target = node["to"];
    if (from->stateVar->type != "Mode") {
        node["from"].error(text::quoted(from->id) + " is not the value of a mode",
                           "a value of a mode");
        return false;
    }
    if (from->stateVar != to->stateVar) {
        target.error(text::quoted(to->id) + " is a value of another variable",
                     "a value of " + text::quoted(plant::nameOf(*from->stateVar)));
        return false;
    }
    if (kind == plant::ChangeKind::idle && from != to) {
        target.error("an idle transition that leads to another value", text::quoted(from->id));
        return false;
    }
    if (!plant::checkLeaves(kind, from->id, to->id, "another value of the mode", target.at()) ||
        !plant::checkMends(kind, to->id, to->fail, target.at())) {
        return false;
    }
    if (!node.has("name")) return true;
    const JsonNode named = node["name"];
    const auto name = named.text();
    if (!name) return false;
    const std::string fixed = nameOf(kind, to);
    if (*name == fixed) return true;
    named.error("found " + text::quoted(*name), text::quoted(fixed) + ", or no name");
    return false;
}

std::optional<plant::Conjunction> JsonTransitions::guardOf(const JsonNode& node) const
{
    if (!node.isArray()) return std::nullopt;
    plant::Conjunction guard;
    bool sound = true;
    for (std::size_t i = 0; i < node.size(); ++i) {
        bool negated = false;
        Atom* atom = names_.literal(node[i], negated);
        sound = sound && atom;
        if (atom) guard.emplace_back(!negated, atom);
    }
    if (!sound) return std::nullopt;
    if (!plant::checkGuard({guard}, node.at())) return std::nullopt;
    return guard;
}

} // namespace language
