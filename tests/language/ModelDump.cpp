#include "tests/language/ModelDump.h"

#include <iomanip>
#include <sstream>

namespace {

std::string text(const Clause& clause)
{
    std::string made;
    for (const auto& [negated, atom] : *clause.literals) {
        made += (negated ? " !" : " ") + atom->id;
    }
    return made;
}

std::string text(const StateFormula* formula)
{
    if (!formula) return " none";
    std::string made = " " + formula->op;
    for (const auto& [holds, atom] : *formula->getAtoms()) {
        made += (holds ? " " : " !") + atom->id;
    }
    return made;
}

class Dump {
public:
    explicit Dump(const language::ReadResult& read) : read_(read) { out_ << std::hexfloat; }

    std::string made()
    {
        const plant::Model& model = *read_.model;
        model.makeEngineObjects();
        out_ << model.name() << " step " << read_.bindings.stepSeconds << " clauses "
             << model.clauseCount() << "\n";
        for (const auto& component : model.components()) {
            dump(*component);
        }
        for (const auto& atom : model.atoms()) {
            dump(*atom);
        }
        for (std::size_t i = 0; i < model.laws().size(); ++i) {
            const language::LawPlace& place = read_.lawPlaces.at(i);
            out_ << "law" << text(*model.laws()[i]) << " of "
                 << (model.ownerOf(i) ? model.ownerOf(i)->name : "nobody") << " at "
                 << read_.files.at(place.file) << ":" << place.line << ":" << place.column << "\n";
        }
        for (const auto& transition : model.transitions()) {
            out_ << "transition";
            dump(*transition);
        }
        for (const StateVar* variable : read_.bindings.measurable) {
            out_ << "measurable " << plant::nameOf(*variable) << "\n";
        }
        for (const plant::ChannelBinding& channel : read_.bindings.channels) {
            dump(channel);
        }
        return out_.str();
    }

private:
    void dump(const Comp& component)
    {
        out_ << "component " << component.name << " " << component.altName << " commands "
             << (component.commandVars ? component.commandVars->size() : 0) << " atoms";
        for (const auto& [id, atom] : *component.atoms) {
            out_ << " " << id;
        }
        out_ << " imports";
        for (const Comp* imported : *component.importedComps) {
            out_ << " " << imported->name;
        }
        out_ << "\n";
        for (const StateVar* variable : *component.stateVars) {
            dump(*variable);
        }
        for (const Transition* transition : *component.transitions) {
            dump(*transition);
        }
    }

    void dump(const StateVar& variable)
    {
        out_ << " " << variable.type << " " << variable.name << " initial "
             << (variable.initial ? variable.initial->id : "none");
        const auto lost = read_.bindings.lost.find(&variable);
        if (lost != read_.bindings.lost.end()) out_ << " lost " << lost->second;
        for (const Clause* clause : *variable.clauses) {
            out_ << ";" << text(*clause);
        }
        out_ << "\n";
    }

    void dump(const Atom& atom)
    {
        out_ << "atom " << atom.id << (atom.fail ? " fault" : "") << " clauses";
        for (const Clause* clause : *atom.clauses) {
            out_ << ";" << text(*clause);
        }
        out_ << " leave";
        for (const Transition* transition : *atom.outTransitions) {
            out_ << " " << transition->name << " to " << transition->atom->id;
        }
        out_ << " arrive";
        for (const Transition* transition : *atom.transitions) {
            out_ << " " << transition->name << text(transition->guard);
        }
        out_ << "\n";
    }

    void dump(const Transition& transition)
    {
        out_ << " " << transition.name << " " << transition.type << (transition.idle ? " idle" : "")
             << (transition.commanded ? " commanded" : "") << " of " << transition.stateVar->name
             << " to " << transition.atom->id << " if" << text(transition.guard) << " then"
             << text(transition.formula) << " " << transition.proba << "\n";
    }

    void dump(const plant::ChannelBinding& channel)
    {
        out_ << (channel.kind == plant::ChannelBinding::Kind::command ? "command " : "observe ")
             << channel.channel << " " << channel.variable->comp->name << "."
             << channel.variable->name;
        if (channel.input) out_ << " input";
        if (channel.varies) out_ << " varies " << *channel.varies;
        if (channel.misread) out_ << " misread " << *channel.misread;
        if (channel.physical) {
            out_ << " within " << channel.physical->from << ".." << channel.physical->to;
        }
        if (channel.noise) out_ << " noise " << channel.noise->deviation;
        for (const auto& [value, range] :
             channel.noise ? channel.noise->ranges : decltype(plant::Noise::ranges)()) {
            out_ << " " << value->value << "=" << range.from << ".." << range.to;
        }
        if (channel.holdSeconds) out_ << " hold " << *channel.holdSeconds;
        if (channel.computed) out_ << " from " << plant::textOf(*channel.computed);
        if (channel.persistSeconds) out_ << " for " << *channel.persistSeconds;
        if (channel.settling) {
            out_ << " settled " << channel.settling->seconds;
            for (const std::string& name : channel.settling->channels) {
                out_ << " after " << name;
            }
        }
        if (const auto* row = std::get_if<plant::ThresholdTable>(&channel.translation)) {
            for (const Atom* value : row->values) {
                out_ << " " << value->id;
            }
            for (const auto& limit : row->limits) {
                out_ << " ";
                if (limit.computed) {
                    out_ << plant::textOf(*limit.computed);
                } else {
                    out_ << limit.number;
                }
                out_ << (limit.belongsAbove ? "+" : "-");
            }
            out_ << " within " << row->hysteresis;
        } else if (const auto* table = std::get_if<plant::ReadingTable>(&channel.translation)) {
            for (const auto& [reading, value] : table->readings) {
                std::visit([&](const auto& each) { out_ << " <" << each << ">"; }, reading);
                out_ << value->id;
            }
            out_ << " otherwise " << (table->otherwise ? table->otherwise->id : "none");
        }
        out_ << "\n";
    }

    const language::ReadResult& read_;
    std::ostringstream out_;
};

} // namespace

std::string modelDump(const language::ReadResult& read)
{
    return Dump(read).made();
}
