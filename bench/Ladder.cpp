#include "bench/Ladder.h"

namespace bench {

using plant::value;
using plant::VariableKind;

Ladder::Ladder(int rungs)
{
    plant::ModelBuilder builder("ladder");
    for (int i = 0; i < rungs; ++i) {
        Comp* rung = builder.component("rung" + std::to_string(i));
        modes_.push_back(
            builder.variable(rung, "mode", VariableKind::mode, {{"ok"}, {"faulty", true}}, 0));
        outputs_.push_back(builder.variable(rung, "out", VariableKind::condition, {{"0"}, {"1"}}));
        builder.fault(value(modes_.back(), "ok"), value(modes_.back(), "faulty"), 0.01);
        for (const char* bit : {"0", "1"}) {
            if (i > 0) {
                builder.law(rung, {{false, value(modes_.back(), "faulty")},
                                   {true, value(outputs_[outputs_.size() - 2], bit)},
                                   {false, value(outputs_.back(), bit)}});
            }
        }
    }
    model_ = builder.build();
    model_->activate();
    for (const auto& atom : model_->atoms()) {
        const bool holds = atom->value == "ok" || atom->value == "1";
        trajectory_.predict(0, atom.get(), holds ? "true" : "false", 2);
    }
}

std::unique_ptr<State> Ladder::state()
{
    auto made = std::make_unique<State>();
    for (const auto& component : model_->components()) {
        trajectory_.addComp(component.get(), made.get(), 0, true, false);
    }
    return made;
}

} // namespace bench
