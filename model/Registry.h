// Several registries in one process, of which one is in use.
//
//     Registry pumps, valves;
//     pumps.use();   ...   // enter a model, set an engine up over it
//     valves.use();  ...   // the same for another one
//     pumps.use();   ...   // the first engine can be asked again
//
// DataManager shows what is in the registry that is in use, and every engine works on that. Single-threaded, as is all of the library.
#pragma once

#include <memory>

/// A registry beside the one that the process begins with. It is empty at first.
class Registry {
public:
    Registry();
    /// Releases what DataManager::reset releases. Ensures: if it was in use, the one that the process began with is in use.
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    /// Ensures: this registry is in use, with all that was in it when another one took its place: the members of DataManager and
    /// the containers that they point to, limits and entries included. Requires: no engine is in a call. Constant time.
    void use();
    bool inUse() const;

    /// Ensures: the registry that the process began with is in use. Constant time.
    static void useFirst();

    struct Contents;

private:
    std::unique_ptr<Contents> contents_;
};
