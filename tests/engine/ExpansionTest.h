// One conflict, expanded on its own: what the tests of the branching step share.
#pragma once

#include "tests/engine/EngineTest.h"

/// Calls itms::propagateThroughConflict on a record of its own and keeps what comes of it.
class ExpansionTest : public EngineTest {
protected:
    struct Rules {
        std::vector<std::string> decided = {}; ///< elements in the parent's `already_changed`
        bool typeRules = false;
        double maxRank = 10.0;
        std::vector<Clause*> open = {}; ///< the parent's queue
    };
    /// Expands the conflict in a record on the state, which goes with it.
    void expand(Clause* conflict, const Rules& rules);
    void expand(Clause* conflict) { expand(conflict, Rules{}); }

    /// The candidates that the trace lists, in their order.
    std::vector<std::string> candidates() const;
    bool isCandidate(const std::string& name) const;
    /// The decided elements of a child, sorted by identifier.
    static std::vector<std::string> decided(const OwnedRecord& child);
    static std::string label(const OwnedRecord& child, const std::string& name)
    {
        return elementOf(child->state, name)->label;
    }

    OwnedRecord first;               ///< what the call returned, or null
    std::vector<OwnedRecord> others; ///< what it pushed, in that order
    std::string text;                ///< its trace
};
