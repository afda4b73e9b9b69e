// Bindings of the syntax tree as bindings of a plant's variables.
#pragma once

#include "language/meaning/ChannelTranslator.h"
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
        : plant_(plant), builder_(builder), report_(report), channels_(files, report, stepSeconds),
          stepSeconds_(stepSeconds)
    {
    }

    /// Adds what a binding says, for the values of the indices around it.
    void build(const syntax::Binding& binding, Instance& within, const Environment& environment);

private:
    bool readChannel(const syntax::Expression& written, plant::ChannelBinding& made,
                     const Environment& environment);
    bool readTimes(const syntax::Binding& written, plant::ChannelBinding& made,
                   const Environment& environment);
    std::optional<plant::NumberRange> range(const syntax::NumberRange& written,
                                            const Environment& environment);
    bool readSpread(const syntax::Binding& written, plant::ChannelBinding& made,
                    const Environment& environment);
    bool readNoise(const syntax::Noise& written, plant::ChannelBinding& made,
                   const Environment& environment);
    std::optional<plant::ThresholdTable> thresholds(const syntax::Thresholds& written,
                                                    const StateVar* variable,
                                                    const Environment& environment);
    bool checkLimits(const syntax::Thresholds& written, const plant::ThresholdTable& table);
    std::optional<plant::ReadingTable> readings(const syntax::Readings& written,
                                                const StateVar* variable,
                                                const Environment& environment);

    Elaboration& plant_;
    plant::CheckedBuilder& builder_;
    Report& report_;
    ChannelTranslator channels_;
    double stepSeconds_;
};

} // namespace language
