// A model that is at work: the active one, with an engine set up over it and its implicates read.
//
//     language::ReadResult read = language::readModel("plants/pump.itms");
//     language::ActiveModel active(*read.model);
//     for (const text::Diagnostic& error : active.implicates().errors) std::cerr << error.format();
//     active.engine().addPropositions(...);
#pragma once

#include "engine/itms.h"
#include "plant/Implicates.h"
#include "plant/Model.h"

namespace plant {

/// There is one registry, so there is one of them at a time. The model outlives it, and stays the active one after it.
class ActiveModel {
public:
    /// Activates the model, sets the engine up, and lets it read BASE.pi where there is such a file and nothing is wrong with it.
    /// The engine traces that to std::cout. Linear in the model and the file.
    explicit ActiveModel(Model& model);

    Model& model() { return model_; }
    itms& engine() { return engine_; }
    /// The file of implicates. With an error in it the engine has none.
    const ImplicateFile& implicates() const { return implicates_; }

private:
    // In the order in which they have to happen.
    struct Activated {
        explicit Activated(Model& model) { model.activate(); }
    };

    Model& model_;
    Activated activated_;
    itms engine_;
    ImplicateFile implicates_;
};

} // namespace plant
