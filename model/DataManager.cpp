#include "model/DataManager.h"

#include "model/Comp.h"
#include "model/Registry.h"

/// The containers that a registry starts with, what it keeps for callers who may still hold it, and, while another one is in
/// use, what DataManager shows of it.
struct Registry::Contents {
    AtomMap atoms;
    CompMap comps;
    TransitionMap transitions;
    std::vector<Clause*> clauses;
    std::vector<std::unique_ptr<AtomMap>> activeAtoms;
    std::vector<AtomMap*> replacedAtoms; // made by others and still theirs
    std::vector<std::unique_ptr<PiTable>> piTables;

    struct Shown {
        std::string model_name;
        AtomMap* active_atoms;
        CompMap* active_comps;
        TransitionMap* active_trans;
        std::vector<Clause*>* cls;
        std::vector<ItmsBmkEntry> itmsBmkEntries;
        SearchLimits searchLimits;
        SearchWork searchWork;
    };
    Shown shown{{}, &atoms, &comps, &transitions, &clauses, {}, {}, {}};
};

namespace {

// Never destroyed: engines and models that are static objects may outlive every other static.
Registry::Contents& first()
{
    static Registry::Contents& instance = *new Registry::Contents;
    return instance;
}

Registry::Contents*& inUseNow()
{
    static Registry::Contents* contents = &first();
    return contents;
}

Registry::Contents& kept()
{
    return *inUseNow();
}

void exchange(Registry::Contents::Shown& shown)
{
    using std::swap;
    swap(shown.model_name, DataManager::model_name);
    swap(shown.active_atoms, DataManager::active_atoms);
    swap(shown.active_comps, DataManager::active_comps);
    swap(shown.active_trans, DataManager::active_trans);
    swap(shown.cls, DataManager::cls);
    swap(shown.itmsBmkEntries, DataManager::itmsBmkEntries);
    swap(shown.searchLimits, DataManager::searchLimits);
    swap(shown.searchWork, DataManager::searchWork);
}

// What is in `shown` of the registry in use is meaningless: both exchanges go through it.
void use(Registry::Contents& contents)
{
    if (&contents == &kept()) {
        return;
    }
    exchange(kept().shown);
    exchange(contents.shown);
    inUseNow() = &contents;
}

} // namespace

Registry::Registry() : contents_(std::make_unique<Contents>()) {}

Registry::~Registry()
{
    if (inUse()) {
        useFirst();
    }
}

void Registry::use()
{
    ::use(*contents_);
}

bool Registry::inUse() const
{
    return contents_.get() == &kept();
}

std::string DataManager::model_name;
AtomMap* DataManager::active_atoms = &kept().atoms;
CompMap* DataManager::active_comps = &kept().comps;
TransitionMap* DataManager::active_trans = &kept().transitions;
std::vector<Clause*>* DataManager::cls = &kept().clauses;
std::vector<ItmsBmkEntry> DataManager::itmsBmkEntries;
SearchLimits DataManager::searchLimits;
SearchWork DataManager::searchWork;

void Registry::useFirst()
{
    ::use(first());
}

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
    Registry::Contents& k = kept();
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
