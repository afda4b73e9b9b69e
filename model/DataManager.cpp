#include "model/DataManager.h"

#include "model/Comp.h"

namespace {

// The containers that the registry starts with, and what it keeps for callers who may still hold it.
struct Kept {
    AtomMap atoms;
    CompMap comps;
    TransitionMap transitions;
    std::vector<Clause*> clauses;
    std::vector<std::unique_ptr<AtomMap>> activeAtoms;
    std::vector<AtomMap*> replacedAtoms; // made by others and still theirs
    std::vector<std::unique_ptr<PiTable>> piTables;
};

// Never destroyed: engines and models that are static objects may outlive every other static.
Kept& kept()
{
    static Kept& instance = *new Kept;
    return instance;
}

} // namespace

std::string DataManager::model_name;
AtomMap* DataManager::active_atoms = &kept().atoms;
CompMap* DataManager::active_comps = &kept().comps;
TransitionMap* DataManager::active_trans = &kept().transitions;
std::vector<Clause*>* DataManager::cls = &kept().clauses;
std::vector<ItmsBmkEntry> DataManager::itmsBmkEntries;
SearchLimits DataManager::searchLimits;
SearchWork DataManager::searchWork;

Atom* DataManager::findAtom(const char* id)
{
    const auto active = active_atoms->find(id);
    if (active != active_atoms->end() && active->second) {
        return active->second;
    }
    for (const auto& [name, comp] : *active_comps) {
        const auto own = comp->atoms->find(id);
        if (own != comp->atoms->end()) {
            return own->second;
        }
        for (const StateVar* variable : *comp->stateVars) {
            for (Atom* atom : *variable->atomLinks) {
                if (eqstr()(atom->getId(), id)) {
                    return atom;
                }
            }
        }
    }
    return nullptr;
}

void DataManager::addItmsBmkEntry(double seconds, unsigned int count, std::vector<const char*>* ids)
{
    itmsBmkEntries.push_back({seconds, count, {ids->begin(), ids->end()}});
}

void DataManager::replaceActiveAtoms(std::unique_ptr<AtomMap> atoms)
{
    kept().replacedAtoms.push_back(active_atoms);
    active_atoms = atoms.get();
    kept().activeAtoms.push_back(std::move(atoms));
}

PiTable* DataManager::newPiTable()
{
    kept().piTables.push_back(std::make_unique<PiTable>());
    return kept().piTables.back().get();
}

void DataManager::reset()
{
    Kept& k = kept();
    k.atoms.clear();
    k.comps.clear();
    k.transitions.clear();
    k.clauses.clear();
    model_name.clear();
    active_atoms = &k.atoms;
    active_comps = &k.comps;
    active_trans = &k.transitions;
    cls = &k.clauses;
    k.activeAtoms.clear();
    k.replacedAtoms.clear();
    k.piTables.clear();
    itmsBmkEntries.clear();
    searchLimits = SearchLimits{};
    searchWork = SearchWork{};
}
