// Bindings of the syntax tree as bindings of a plant's variables.
#pragma once

#include "language/meaning/Elaboration.h"
#include "plant/Bindings.h"

#include <optional>
#include <string>

namespace language {

plant::ChannelBinding::Kind kindOf(const syntax::Binding& binding);

class BindingBuilder {
public:
    BindingBuilder(Elaboration& plant, plant::CheckedBuilder& builder, const SourceFiles& files,
                   Report& report, double stepSeconds)
        : plant_(plant), builder_(builder), files_(files), report_(report), stepSeconds_(stepSeconds)
    {
    }

    /// Adds what a binding says, for the values of the indices around it.
    void build(const syntax::Binding& binding, Instance& within, const Environment& environment);

private:
    std::optional<plant::ThresholdTable> thresholds(const syntax::Thresholds& written,
                                                    const StateVar* variable,
                                                    const Environment& environment);
    bool checkLimits(const syntax::Thresholds& written, const plant::ThresholdTable& table);
    std::optional<plant::ReadingTable> readings(const syntax::Readings& written,
                                                const StateVar* variable,
                                                const Environment& environment);
    std::optional<std::string> channelName(const syntax::Text& text, const Environment& environment);
    std::optional<double> seconds(const syntax::Duration& duration, const Environment& environment);

    Elaboration& plant_;
    plant::CheckedBuilder& builder_;
    const SourceFiles& files_;
    Report& report_;
    double stepSeconds_;
};

} // namespace language
