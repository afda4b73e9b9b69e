// A place in a checkpoint, which knows its name: "tracker.hypotheses[2].weight".
//
//     const CheckpointField weight = CheckpointField(json)["tracker"]["hypotheses"].items()[2]["weight"];
//     double log = weight.number();             // or DamagedCheckpoint: "tracker.hypotheses[2].weight is a text, not a number"
//
// A checkpoint may have been changed by anybody, so nothing in it is taken for what it should be.
#pragma once

#include <cstdint>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <utility>
#include <vector>

namespace session {

class CheckpointField {
public:
    /// The checkpoint as a whole, or, with a name, a part of it. Requires: `json` outlives this and what is taken from it.
    explicit CheckpointField(const nlohmann::json& json, std::string name = {});

    /// A member. Throws DamagedCheckpoint when this is no object, or has none of that name.
    CheckpointField operator[](const std::string& key) const;
    /// Whether this is an object with such a member.
    bool has(const std::string& key) const;
    /// The members of an array, as many as there are, or exactly `count`. Throws DamagedCheckpoint otherwise, as the others do.
    std::vector<CheckpointField> items() const;
    std::vector<CheckpointField> items(std::size_t count) const;

    /// The members of an object, with their names.
    std::vector<std::pair<std::string, CheckpointField>> members() const;

    bool flag() const;
    const std::string& text() const;
    bool isNull() const;
    /// A finite number, from `least` to `most`.
    double number(double least = std::numeric_limits<double>::lowest(),
                  double most = std::numeric_limits<double>::max()) const;
    /// A whole number from 0 to `most`.
    std::uint64_t whole(std::uint64_t most = mostCounted) const;

    const nlohmann::json& json() const { return *json_; }
    /// Throws DamagedCheckpoint: this place, and what is wrong there.
    [[noreturn]] void refuse(const std::string& what) const;

    /// More than anything that is counted comes to.
    static constexpr std::uint64_t mostCounted = std::uint64_t{1} << 53U;

private:
    [[noreturn]] void refuseKind(const std::string& expected) const;

    const nlohmann::json* json_;
    std::string name_;
};

} // namespace session
