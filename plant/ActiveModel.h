// A model that is at work: an engine set up over it, its implicates read, and a registry of its own.
//
//     language::ReadResult read = language::readModel("plants/pump.itms");
//     plant::ActiveModel active(*read.model);
//     for (const text::Diagnostic& error : active.implicates().errors) std::cerr << error.format();
//     active.engine().addPropositions(...);
//
// Several of them may be there at a time, and their engines asked in turns. The registry of the one whose engine was asked
// for last is in use.
#pragma once

#include "engine/itms.h"
#include "model/Registry.h"
#include "plant/Implicates.h"
#include "plant/Model.h"

#include <memory>

namespace plant {

/// When an engine is set up.
enum class SetUp {
    now,
    /// When it is asked for: a large plant of which nothing is searched costs neither the time nor the memory.
    whenAsked
};

class ActiveModel {
public:
    /// Sets the engine up, and lets it read BASE.pi where there is such a file and nothing is wrong with it. The engine
    /// traces that to std::cout. The model outlives this. Requires: the model has no other ActiveModel at the time, as what set-up
    /// derives is kept in the model's objects, too. Ensures: its registry is in use, if it is set up. Linear in the model and the file.
    /// A model with implicates is set up at once.
    explicit ActiveModel(Model& model, SetUp setUp = SetUp::now);

    Model& model() { return model_; }
    /// Ensures: the model's registry is in use. Whoever keeps the reference calls this again before using it, as another model's
    /// engine may have been asked for in the meantime. Constant time; linear in the model where the engine was not set up.
    itms& engine();
    /// The file of implicates. With an error in it the engine has none.
    const ImplicateFile& implicates() const { return implicates_; }

private:
    // In the order in which they have to happen.
    struct OwnRegistry : Registry {
        explicit OwnRegistry(const Model& model);
    };

    struct Work {
        explicit Work(const Model& model) : registry(model) {}

        OwnRegistry registry;
        itms engine;
    };

    Model& model_;
    std::unique_ptr<Work> work_; ///< null: not set up
    ImplicateFile implicates_;
};

} // namespace plant
