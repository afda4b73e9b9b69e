#include "assess/LawViolations.h"

namespace assess {

void LawViolations::count(const monitor::Contradiction& contradiction,
                          const std::map<std::size_t, std::set<plant::AtomIndex>>& seen)
{
    ++steps_;
    for (const auto& [law, observed] : seen) {
        Count& known = laws_[law];
        if (known.steps++ == 0) {
            known.firstStep = contradiction.input.step;
            known.firstTime = contradiction.input.t;
        }
        for (const plant::AtomIndex value : observed) {
            ++known.observed[value];
        }
    }
}

} // namespace assess
