// Several registries in one process, of which one is in use.
//
//     Registry pumps, valves;
//     pumps.use();   ...   // enter a model, set an engine up over it
//     valves.use();  ...   // the same for another one
//     pumps.use();   ...   // the first engine can be asked again
//
// DataManager shows what is in the registry that is in use, and every engine works on that. Single-threaded, as is
// all of the library.
#pragma once

#include <memory>

/// A registry beside the one that the process begins with. The objects of the models in it belong to whoever
/// entered them.
class Registry {
public:
    /// Ensures: an empty registry that is not in use, without limits.
    Registry();
    /// Releases what DataManager::reset releases.
    /// Ensures: if it was in use, the one that the process began with is in use.
    ~Registry();
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    /// Takes the place of the registry in use. Constant time.
    /// Requires: no engine is in a call.
    /// Ensures: this registry is in use, with all that was in it when another one took its place: the members of
    /// DataManager and the containers that they point to, limits and entries included.
    void use();
    /// Whether DataManager shows this registry.
    bool inUse() const;

    /// Takes the place of the registry in use. Constant time.
    /// Requires: no engine is in a call.
    /// Ensures: the registry that the process began with is in use.
    static void useFirst();

    /// What is in a registry; known to model/DataManager.cpp only.
    struct Contents;

private:
    std::unique_ptr<Contents> contents_;
};
