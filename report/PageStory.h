// The story of a run as a page tells it: the timeline, what happened when, and the conflicts behind it.
#pragma once

#include "report/StepExplanation.h"
#include "report/Timeline.h"
#include "telemetry/Step.h"

#include <deque>
#include <map>
#include <unordered_map>

namespace report {

/// A step that a page takes.
struct PageStep {
    const StepReport& report;
    const telemetry::Step& step;
    const monitor::TrackInput& input;
    const monitor::TrackAnswer& answer;
};

/// A variable that was read or commanded, by a channel or by its own name.
struct PageChannel {
    const StateVar* variable = nullptr;
    const plant::ChannelBinding* binding = nullptr; ///< null: none, it was named itself
};

/// The first of a list, and the last of it; what is between is counted, so that memory has a bound.
template <typename Entry> class BothEnds {
public:
    explicit BothEnds(std::size_t mostAtAnEnd) : most_(mostAtAnEnd) {}

    void add(Entry entry)
    {
        if (first_.size() < most_) {
            first_.push_back(std::move(entry));
            return;
        }
        last_.push_back(std::move(entry));
        if (last_.size() <= most_) return;
        last_.pop_front();
        ++leftOut_;
    }
    /// What is there, in its order.
    template <typename Visit> void each(const Visit& visit) const
    {
        for (const Entry& entry : first_) visit(entry);
        for (const Entry& entry : last_) visit(entry);
    }
    std::size_t leftOut() const { return leftOut_; }

private:
    std::size_t most_;
    std::deque<Entry> first_;
    std::deque<Entry> last_;
    std::size_t leftOut_ = 0;
};

/// Something changed: the status, or the first explanations.
struct PageEvent {
    std::size_t step = 0;
    double t = 0.0;
    monitor::TrackStatus status = monitor::TrackStatus::nominal;
    std::vector<Believed> first; ///< the first group of explanations that cannot be told apart
};

class PageStory {
public:
    /// Shows so much of every step. The plant and the model outlive this.
    PageStory(const plant::Plant& plant, const language::ReadResult& model, const Shown& shown);

    /// Costs what explaining the step costs (explainStep) where it contradicts what was believed; else a look at the modes and the
    /// channels. Memory is bounded, whatever the number of steps.
    void add(const PageStep& step);

    const Timeline& timeline() const { return timeline_; }
    /// First those of the model, in their order.
    const std::vector<PageChannel>& channels() const { return channels_; }
    /// The mode variables, in the order of TimelineRow::modes.
    const std::vector<plant::VariableIndex>& modes() const { return modes_; }
    const BothEnds<PageEvent>& events() const { return events_; }
    const BothEnds<ExplainedConflict>& conflicts() const { return conflicts_; }
    std::size_t steps() const { return steps_; }
    const std::map<monitor::TrackStatus, std::size_t>& counts() const { return counts_; }

private:
    TimelineRow rowOf(const PageStep& step);
    void takeCandidates(TimelineRow& row, const StepReport& report) const;
    std::vector<ChannelState> channelsOf(const PageStep& step);
    std::size_t channelOf(const StateVar* variable);
    void explain(const PageStep& step);
    void note(const TimelineRow& row);

    const plant::Plant& plant_;
    const language::ReadResult& model_;
    Shown shown_;
    std::vector<plant::VariableIndex> modes_;
    std::vector<PageChannel> channels_;
    std::unordered_map<const StateVar*, std::size_t> channelNumbers_;
    std::unordered_map<const Comp*, std::uint32_t> componentNumbers_;
    std::map<std::string, std::uint32_t, std::less<>> componentsByName_;
    std::unordered_map<const StateVar*, plant::VariableIndex> variables_;
    Timeline timeline_;
    std::vector<Believed> before_;      ///< the candidates of the step before
    std::vector<Believed> firstBefore_; ///< the first group of them
    std::optional<monitor::TrackStatus> statusBefore_;
    BothEnds<PageEvent> events_;
    BothEnds<ExplainedConflict> conflicts_;
    std::size_t steps_ = 0;
    std::map<monitor::TrackStatus, std::size_t> counts_;
};

} // namespace report
