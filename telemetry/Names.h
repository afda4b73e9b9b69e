// The names of a plant's variables in telemetry: channels, and COMPONENT.VARIABLE.
#pragma once

#include "plant/Bindings.h"
#include "plant/ListSequence.h"
#include "plant/Model.h"
#include "text/Diagnostic.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace telemetry {

enum class Side { observation, command };

/// A variable of the model.
struct Variable {
    StateVar* variable = nullptr;
    const plant::ChannelBinding* binding = nullptr;
    std::uint32_t bindingNumber = 0; ///< which of the variable's channels, from 0

    std::string name() const; ///< COMPONENT.VARIABLE
};

/// What a name stands for. One channel may be bound to several variables.
struct Name {
    std::span<const std::uint32_t> observed; ///< indices of variables
    std::span<const std::uint32_t> commanded;
    bool isChannel = false;
    std::optional<std::uint32_t> operand = {}; ///< of what is computed: its number among the operands

    std::span<const std::uint32_t> on(Side side) const
    {
        return side == Side::observation ? observed : commanded;
    }
};

/// All names of a model. The name of a channel means the channel, even if there is a variable of this name. A variable of a
/// part of a part has two names, `branch/valve.position` and `branch.valve.position`.
class Names {
public:
    /// `renamed` has further names, and those of the model for which they stand; they take precedence. What stands for nothing there is
    /// left out. Linear in the variables.
    /// Requires: the model and the bindings outlive this, and the bindings are not changed.
    Names(const plant::Model& model, const plant::Bindings& bindings,
          const std::map<std::string, std::string>& renamed = {});

    /// A variable with several channels is there once for each of them. First those that are observed, the bound ones in the order
    /// of the bindings and then the others in the model's order; then the commands in the model's order.
    const std::vector<Variable>& variables() const { return variables_; }
    /// How many of them are not commands.
    std::size_t observedCount() const { return observedCount_; }

    /// The index of a name, or `none`. Constant time.
    std::uint32_t find(std::string_view name) const;
    Name operator[](std::uint32_t index) const;
    /// Whether the name stands for nothing on that side, and for no operand.
    bool isUnknown(std::uint32_t index, Side side) const
    {
        return index == none || ((*this)[index].on(side).empty() && !(*this)[index].operand);
    }
    /// The channels from which something is computed, or for which something waits, by their numbers.
    const std::vector<std::string>& operands() const { return operands_; }
    /// The number of one of them.
    std::uint32_t operandNumber(const std::string& channel) const
    {
        return *(*this)[find(channel)].operand;
    }
    std::size_t size() const { return names_.size(); }
    /// The names themselves, by index. Linear.
    std::vector<std::string> texts() const;
    static constexpr std::uint32_t none = UINT32_MAX;

    /// Why a name stands for nothing on that side. Linear in the names.
    /// Requires: it stands for nothing there.
    text::Message unknown(std::string_view name, Side side) const;
    /// The same where both sides are meant.
    text::Message unknown(std::string_view name) const;

private:
    // The text of a name stands where it was given, or follows from the names of its component and variable.
    enum class Origin : std::uint8_t { channel, variable, dottedVariable, operand };
    struct Entry {
        std::uint32_t of; ///< variable or operand
        Origin origin;
        bool isChannel; ///< of a variable, or of nothing but what is computed
    };
    using Meanings = std::vector<std::pair<std::uint32_t, std::uint32_t>>; ///< names, and a variable

    void addVariables(const plant::Model& model, const plant::Bindings& bindings);
    void addNames();
    void addName(const Entry& entry, Meanings& observed, Meanings& commanded);
    void addOperands(const plant::Bindings& bindings);
    void addOperand(const std::string& channel);
    std::pair<std::uint32_t, bool> enter(const Entry& entry);
    std::size_t placeOf(std::string_view text) const;
    void grow();
    bool is(const Entry& entry, std::string_view text) const;
    void appendText(const Entry& entry, std::string& text) const;
    std::string hint(std::string_view name, bool observed, bool commanded) const;

    std::vector<Variable> variables_;
    std::size_t observedCount_ = 0;
    std::vector<Entry> names_;
    plant::ListSequence<std::uint32_t> observed_; ///< by name; operands that are nothing else have no list
    plant::ListSequence<std::uint32_t> commanded_;
    std::vector<std::string> operands_;
    std::unordered_map<std::uint32_t, std::uint32_t> operandOf_; ///< by name
    std::vector<std::uint32_t> table_; ///< of names, with linear probing; a power of two, half empty
    std::map<std::string, std::uint32_t, std::less<>> renamed_;
};

} // namespace telemetry
