// One run of an engine over a random model, watched. `Engine` is itms or PlainEngine.
#pragma once

#include "engine/itms.h"
#include "tests/reference/Observed.h"
#include "tests/reference/PlainEngine.h"
#include "tests/reference/RandomState.h"
#include "tests/reference/Snapshot.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

/// Conflicts that a search of the plain engine may resolve before its seed is left out.
inline constexpr std::size_t tooManyRecords = 200;

/// Releases a record as its holder must.
inline void discard(ItmsRes* record)
{
    record->clear();
    delete record;
}

/// The records that a search found; releases them.
struct Records {
    std::vector<ItmsRes*> list;

    Records() = default;
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;
    ~Records() { clear(); }
    void clear()
    {
        for (ItmsRes* record : list) {
            discard(record);
        }
        list.clear();
    }
};

/// An engine over a random model, and what could be seen of it so far. While it lives, standard output and
/// standard error are its own.
template <class Engine> class Run {
public:
    RandomModel model;
    Random& random = model.random;
    Engine engine;
    Observed observed;

    explicit Run(std::uint64_t seed, bool muted = false, bool sound = false)
        : model(seed, sound), capture_(muted)
    {
        if constexpr (requires { engine.maxRecords; }) {
            engine.maxRecords = tooManyRecords;
        }
    }

    /// Ends a piece of the run: what it printed, its result, and, where given, the state it worked on.
    void note(const std::string& what, const std::string& result = "", const State* state = nullptr)
    {
        observed.trace(what, capture_.take());
        observed.result(what, state ? result + "\n" + snapshot(state, model) : result);
    }

    /// Set-up, with prime implicates of some kind.
    void setUp()
    {
        const int kind = random.between(0, 9);
        if (kind == 0) {
            readImplicates();
        }
        engine.rtInit();
        note("set-up", snapshotRegistry(engine.stateVars) + snapshotModel(model));
        if (kind == 1) {
            engine.rtInit();
            note("second set-up", snapshotRegistry(engine.stateVars) + snapshotModel(model));
        }
        if (kind >= 2 && kind <= 3) {
            readImplicates();
        }
        if (kind >= 4 && kind <= 6) {
            engine.piTable = DataManager::newPiTable();
            const int heads = random.between(0, random.chance(50) ? 3 : 12);
            for (int i = 0; i < heads && !model.atoms.empty(); ++i) {
                Atom* head = random.pick(model.atoms);
                engine.piTable->addPIAtom(head, model.implicateSets());
            }
            showImplicates("own table");
        }
    }

    void readImplicates()
    {
        const std::filesystem::path base = std::filesystem::temp_directory_path() /
                                           ("itms-reference-" + std::to_string(::getpid()));
        const std::string name = base.string() + ".pi";
        DataManager::model_name = base.string();
        if (!random.chance(10) && !model.atoms.empty()) {
            std::ofstream(name, std::ios::binary) << model.implicateFile();
        }
        const int outcome = engine.readPI();
        std::filesystem::remove(name);
        note("readPI", std::to_string(outcome));
        showImplicates("table read");
    }

    void showImplicates(const std::string& what)
    {
        std::string list;
        for (Atom* atom : model.atoms) {
            if (const PiTable::Implicates* sets = engine.piTable->getPIs(atom)) {
                list += atom->id + ": ";
                for (const std::vector<Atom*>* set : *sets) {
                    list += text(set) + ", ";
                }
            }
        }
        note(what, list);
    }

private:
    Capture capture_;
};

/// What the latest search did, as a text.
inline std::string searchWorkText()
{
    const SearchWork& work = DataManager::searchWork;
    return "records " + std::to_string(work.records) + " flips " + std::to_string(work.flips) +
           " components " + std::to_string(work.components) + " candidates " +
           std::to_string(work.candidates) + (work.partial ? " partial" : "");
}
