#include "plant/Fingerprint.h"

#include "text/Digest.h"

#include <bit>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace plant {

namespace {

class Hash {
public:
    explicit Hash(bool withProbabilities = true) : withProbabilities_(withProbabilities) {}

    void add(std::string_view text)
    {
        digest_.add(text);
        digest_.add("\xff"); // no byte of UTF-8: where the text ends
    }
    void add(std::uint64_t number)
    {
        for (int shift = 0; shift < 64; shift += 8) {
            const char byte = static_cast<char>((number >> shift) & 0xffU);
            digest_.add({&byte, 1});
        }
    }
    void add(double number) { add(std::bit_cast<std::uint64_t>(number)); }
    void addProbability(double probability)
    {
        if (withProbabilities_) add(probability);
    }
    /// Where it is given.
    void addProbability(std::string_view name, const std::optional<double>& probability)
    {
        if (!withProbabilities_ || !probability) return;
        add(name);
        add(*probability);
    }

    std::string text() const { return digest_.hex(); }

private:
    bool withProbabilities_;
    text::Digest digest_;
};

std::uint64_t number(std::size_t count)
{
    return count;
}

void add(Hash& hash, const Plant& plant, const PlantVariable& variable)
{
    hash.add(variable.variable->comp->name);
    hash.add(variable.variable->name);
    hash.add(variable.variable->type);
    hash.add(variable.variable->initial ? variable.variable->initial->id : std::string());
    hash.add(number(variable.values.size()));
    for (const AtomIndex value : variable.values) {
        hash.add(plant.atom(value)->id);
        hash.add(number(plant.atom(value)->fail ? 1 : 0));
    }
}

void addTransition(Hash& hash, const Model& model, std::size_t number)
{
    const GivenTransition& given = model.transition(number);
    const Atom& to = *model.atoms()[given.to];
    hash.add(nameOf(given.kind, to));
    if (given.kind == TransitionKind::repair) hash.add(std::string_view("repair"));
    hash.add(std::uint64_t{given.kind == TransitionKind::idle ? 1U : 0U});
    hash.add(to.id);
    hash.addProbability(given.probability);
    const auto precondition = model.signedPreconditionOf(number);
    std::vector<SignedNumber> listed(precondition.begin(), precondition.end());
    sortAsListed(listed);
    for (const SignedNumber literal : listed) {
        hash.add(std::uint64_t{literal & 1U});
        hash.add(model.atoms()[literal / 2]->id);
    }
}

// What a model without it does not have adds nothing to its fingerprint.
void add(Hash& hash, const std::optional<ChannelExpression>& computed)
{
    if (!computed) return;
    hash.add(std::string_view("computed"));
    hash.add(textOf(*computed));
}

void add(Hash& hash, const ThresholdTable& table)
{
    hash.add(table.hysteresis);
    for (const Atom* value : table.values) {
        hash.add(value->id);
    }
    for (const auto& limit : table.limits) {
        hash.add(limit.number);
        hash.add(number(limit.belongsAbove ? 1 : 0));
        add(hash, limit.computed);
    }
}

void add(Hash& hash, const ReadingTable& table)
{
    for (const auto& [reading, value] : table.readings) {
        if (const auto* text = std::get_if<std::string>(&reading)) {
            hash.add(*text);
        } else {
            hash.add(std::get<double>(reading));
        }
        hash.add(value->id);
    }
    hash.add(table.otherwise ? table.otherwise->id : std::string());
}

void add(Hash& hash, const ChannelBinding& channel)
{
    hash.add(number(channel.kind == ChannelBinding::Kind::command ? 1 : 0));
    hash.add(channel.channel);
    hash.add(channel.variable->comp->name);
    hash.add(channel.variable->name);
    hash.add(channel.holdSeconds.value_or(-1.0));
    if (channel.input) hash.add(std::string_view("input"));
    hash.addProbability("varies", channel.varies);
    hash.addProbability("misread", channel.misread);
    add(hash, channel.computed);
    if (channel.persistSeconds) {
        hash.add(std::string_view("for"));
        hash.add(*channel.persistSeconds);
    }
    if (channel.settling) {
        hash.add(std::string_view("settled"));
        hash.add(channel.settling->seconds);
        for (const std::string& name : channel.settling->channels) {
            hash.add(name);
        }
    }
    if (const auto* thresholds = std::get_if<ThresholdTable>(&channel.translation)) {
        add(hash, *thresholds);
    } else if (const auto* readings = std::get_if<ReadingTable>(&channel.translation)) {
        add(hash, *readings);
    }
}

std::string hashed(Hash hash, const Plant& plant, const Bindings& bindings)
{
    hash.add(bindings.stepSeconds);
    const Model& model = plant.model();
    std::unordered_map<const Comp*, std::vector<std::size_t>> transitions;
    for (std::size_t i = 0; i < model.transitionCount(); ++i) {
        transitions[model.atoms()[model.transition(i).to]->getVarComp()].push_back(i);
    }
    const Comp* comp = nullptr;
    for (const PlantVariable& variable : plant.variables()) {
        add(hash, plant, variable);
        const auto lost = bindings.lost.find(variable.variable);
        hash.addProbability(lost == bindings.lost.end() ? 0.0 : lost->second);
        if (variable.variable->comp != comp) {
            comp = variable.variable->comp;
            for (const std::size_t transition : transitions[comp]) {
                addTransition(hash, model, transition);
            }
        }
    }
    for (std::size_t clause = 0; clause < plant.clauseCount(); ++clause) {
        for (const PlantLiteral& literal : plant.clause(static_cast<ClauseIndex>(clause))) {
            hash.add(number(literal.negated ? 1 : 0));
            hash.add(static_cast<std::uint64_t>(literal.atom));
        }
        hash.add(std::string_view());
    }
    for (const ChannelBinding& channel : bindings.channels) {
        add(hash, channel);
    }
    return hash.text();
}

} // namespace

std::string fingerprint(const Plant& plant, const Bindings& bindings)
{
    return hashed(Hash(), plant, bindings);
}

std::string structure(const Plant& plant, const Bindings& bindings)
{
    return hashed(Hash(false), plant, bindings);
}

std::string fingerprint(std::string_view text)
{
    Hash hash;
    hash.add(text);
    return hash.text();
}

} // namespace plant
