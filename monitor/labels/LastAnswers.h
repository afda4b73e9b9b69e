// Answers to the questions that were asked last: at the next step most of them are asked again.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace monitor {

template <typename Question, typename Answer> class LastAnswers {
public:
    /// Keeps so many. Requires: 1 or more.
    explicit LastAnswers(std::size_t most) : most_(most) {}

    /// What `find` returns for the question, which is asked only where none of the last ones was the same. Compares the question
    /// with each; the reference is valid until the next call.
    template <typename Find> const Answer& to(Question question, Find find)
    {
        for (const Entry& entry : entries_) {
            if (entry.question == question) return entry.answer;
        }
        Answer answer = find(question);
        if (entries_.size() < most_) {
            entries_.push_back({std::move(question), std::move(answer)});
            return entries_.back().answer;
        }
        Entry& oldest = entries_[oldest_];
        oldest_ = (oldest_ + 1) % most_;
        oldest = {std::move(question), std::move(answer)};
        return oldest.answer;
    }

private:
    struct Entry {
        Question question;
        Answer answer;
    };

    std::size_t most_;
    std::vector<Entry> entries_;
    std::size_t oldest_ = 0;
};

} // namespace monitor
