// What the work of a step may still cost, beside the records of its searches: literals looked at, time, memory, patience.
//
//     Meter meter(limits, work);                  // of the step; everything below counts here
//     try {
//         ...                                     // Meter::spend(n) in every loop that can be long
//     } catch (const Meter::Cut& cut) {           // the answer is not complete
//         ...
//     }
//
// Work is counted, so that a step that is cut is cut at the same place wherever it runs; seconds, memory and an interruption are
// looked at now and then. A part of each limit is kept back for making an answer of what was found: that is done under
// Meter::Finishing. What has to be done in any case is done under Meter::Free. A meter belongs to one thread, and the latest one
// counts.
#pragma once

#include "model/SearchLimits.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace monitor {

/// What a step may cost, whatever it is spent on. A larger value costs time and memory in proportion.
struct WorkLimits {
    /// Literals of clauses looked at, and what costs as much; 0..unlimited. A core does some ten million a second.
    std::uint64_t maxWork = SearchLimits::unlimited;
    /// Bytes of memory of the whole process.
    std::uint64_t maxBytes = SearchLimits::unlimited;
};

class Meter final : public SearchWatch {
public:
    /// Thrown where a limit is met.
    struct Cut {
        SearchLimit limit;
    };

    /// Takes seconds and interruption from the limits of the searches. Time counts from now. Ensures: this meter counts, until it
    /// is gone.
    Meter(const SearchLimits& limits, const WorkLimits& work);
    ~Meter() override;
    Meter(const Meter&) = delete;
    Meter& operator=(const Meter&) = delete;

    /// Takes note of so much work for the meter that counts, if there is one. Throws Cut.
    static void spend(std::uint64_t work)
    {
        if (current_ && (current_->ticks_ += work) >= current_->next_) current_->lookOrThrow();
    }
    /// The same for the engine, which wants to be told. The limit stays met.
    SearchLimit take(std::uint64_t work) override;

    /// The meter that counts. Null: none.
    static Meter* current() { return current_; }
    /// The work that one way of searching may take before another one is tried, where the work is limited.
    std::uint64_t portion() const
    {
        return work_.maxWork == SearchLimits::unlimited ? SearchLimits::unlimited
                                                        : work_.maxWork / 10;
    }
    /// The limit that was met until now, if one was.
    SearchLimit limit() const { return met_; }
    /// All work, counted or not.
    std::uint64_t all() const { return ticks_; }
    /// The work that was counted.
    std::uint64_t spent() const { return ticks_ - uncounted_; }

    /// While it lives, work is not counted, and nothing is cut.
    class Free {
    public:
        Free() : before_(current_) { current_ = nullptr; }
        ~Free() { current_ = before_; }
        Free(const Free&) = delete;
        Free& operator=(const Free&) = delete;

    private:
        Meter* before_;
    };

    /// While it lives, what was kept back of the limits may be spent, too; of patience a second.
    class Finishing {
    public:
        Finishing() : meter_(current_)
        {
            if (meter_) meter_->setFinishing(true);
        }
        ~Finishing()
        {
            if (meter_) meter_->setFinishing(false);
        }
        Finishing(const Finishing&) = delete;
        Finishing& operator=(const Finishing&) = delete;

    private:
        Meter* meter_;
    };

    /// While it lives, work is not counted, but time, memory and interruption are looked at: for work that depends on what is
    /// remembered, and so is not the same in a run that was resumed. One within another makes no difference.
    class Uncounted {
    public:
        Uncounted()
            : meter_(current_ && current_->counting_ ? current_ : nullptr),
              counted_(meter_ ? meter_->spent() : 0)
        {
            if (meter_) meter_->counting_ = false;
        }
        ~Uncounted()
        {
            if (!meter_) return;
            meter_->uncounted_ = meter_->ticks_ - counted_;
            meter_->counting_ = true;
            meter_->lookBeforeTheLimit();
        }
        Uncounted(const Uncounted&) = delete;
        Uncounted& operator=(const Uncounted&) = delete;

    private:
        Meter* meter_;
        std::uint64_t counted_;
    };

private:
    void lookOrThrow();
    SearchLimit look();
    void lookBeforeTheLimit();
    bool tooMuchMemory();
    bool isStopped();
    void setFinishing(bool finishing)
    {
        finishing_ = finishing;
        lookBeforeTheLimit();
    }
    double share() const { return finishing_ ? 1.0 : searchingShare; }

    /// Of each limit, what may be spent before an answer is made.
    static constexpr double searchingShare = 0.85;

    /// How long an answer may be made of what was found after somebody wants no further one.
    static constexpr std::chrono::seconds patience{1};

    static thread_local Meter* current_;

    Meter* before_;
    SearchLimits limits_;
    WorkLimits work_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::uint64_t ticks_ = 0;                                      ///< all work
    std::uint64_t uncounted_ = 0;                                  ///< of it
    std::uint64_t next_ = 0;                                       ///< when to look again
    std::uint64_t nextMemory_ = 0;                                 ///< when to look at the memory
    std::optional<std::chrono::steady_clock::time_point> stopped_; ///< when that was seen
    bool counting_ = true;
    bool finishing_ = false;
    SearchLimit met_ = SearchLimit::none;
};

} // namespace monitor
