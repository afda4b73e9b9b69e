#include "monitor/step/StretchSearch.h"

#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "monitor/step/Judge.h"
#include "monitor/step/NearConflict.h"
#include "monitor/step/Requirements.h"

#include <algorithm>

namespace monitor {

namespace {

class StretchSearch {
public:
    StretchSearch(const StepFrame& frame, Budget& budget)
        : frame_(frame), budget_(budget), labels_(*frame.carried)
    {
    }

    std::optional<Explanations> run(int faultBudget)
    {
        try {
            take({});
            if (!labels_.consistent() || labels_.contradicted().empty()) {
                return std::nullopt;
            }
            budget_.spendRecord();
            required_.emplace(frame_);
            if (required_->possible()) {
                explain({}, faultBudget);
            }
        } catch (const Meter::Cut& cut) {
            budget_.meet(cut.limit);
            answer_.complete = false;
        }
        if (!isPlain_) {
            return std::nullopt;
        }
        answer_.limit = budget_.limit();
        answer_.work = budget_.work();
        return std::move(answer_);
    }

private:
    // The labels under some deviations, from those that were taken last. What they cost depends on these.
    void take(const Deviations& deviations)
    {
        {
            const Meter::Uncounted uncounted;
            labels_.take(assumptionsOf(frame_, deviations), frame_.observations, frame_.inputs);
        }
        Meter::spend(labels_.workFrom(*frame_.carried));
    }

    // Requires: the labels are those under the deviations. Ensures: what is required is as before.
    void explain(const Deviations& deviations, int faultBudget)
    {
        if (labels_.consistent() && labels_.contradicted().empty()) {
            settle(deviations);
            return;
        }
        const auto conflict =
            labels_.consistent() ? nearConflict(frame_.plant, labels_) : std::nullopt;
        isPlain_ = isPlain_ && conflict.has_value();
        if (conflict) {
            split(deviations, *conflict, faultBudget);
        }
    }

    void settle(const Deviations& deviations)
    {
        const Meter::Uncounted uncounted;
        const Prediction& labels = labels_.prediction();
        const bool fills = frame_.carriedFills &&
                           stillFillsInTurn(frame_.plant, labels, frame_.carried->prediction());
        if (!fills && completionOf(frame_.plant, labels) != Completion::possible) {
            isPlain_ = false;
            return;
        }
        Deviations sorted = deviations;
        std::sort(sorted.begin(), sorted.end());
        answer_.labels.emplace(sorted, labels_);
        if (answer_.found.insert(std::move(sorted)).second) {
            budget_.spendCandidate();
        }
    }

    void split(const Deviations& deviations, const std::vector<VariableIndex>& conflict,
               int faultBudget)
    {
        budget_.spendRecord();
        const std::size_t mark = required_->mark();
        const SharedArray<AtomIndex> modes = labels_.assumptions().modes;
        for (const VariableIndex variable : conflict) {
            const AtomIndex kept = modes[frame_.plant.modePlace(variable)];
            for (const ModeOption& option : frame_.stepOf(variable).options) {
                const int left = faultBudget - (option.fault ? 1 : 0);
                if (option.value != kept && left >= 0) {
                    deviate(deviations, option.value, left);
                }
                if (!isPlain_ || !answer_.complete) {
                    return;
                }
            }
            required_->require(kept);
            if (!required_->possible()) {
                break;
            }
        }
        required_->undo(mark);
    }

    void deviate(const Deviations& deviations, AtomIndex value, int faultBudget)
    {
        Meter::spend(1);
        if (!required_->allow(value)) {
            return;
        }
        if (budget_.exhausted()) {
            answer_.complete = false;
            return;
        }
        const std::size_t mark = required_->mark();
        required_->require(value);
        if (required_->possible()) {
            Deviations more = deviations;
            more.push_back(value);
            take(more);
            explain(more, faultBudget);
        }
        required_->undo(mark);
    }

    const StepFrame& frame_;
    Budget& budget_;
    StepLabels labels_; ///< under the deviations that were looked at last
    std::optional<Requirements> required_;
    Explanations answer_;
    bool isPlain_ = true;
};

} // namespace

std::optional<Explanations> searchStretches(const StepFrame& frame, int faultBudget, Budget& budget)
{
    return frame.carried ? StretchSearch(frame, budget).run(faultBudget) : std::nullopt;
}

} // namespace monitor
