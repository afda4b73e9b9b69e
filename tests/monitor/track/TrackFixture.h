// What the tests of a tracker have in common.
#pragma once

#include "tests/support/HandMade.h"
#include "tests/support/TestModel.h"

#include "monitor/track/Tracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using Names = std::vector<std::string>;

/// A lossy command by identifiers.
struct Lossy {
    std::string given;
    std::string fallback;
    double probability;
};

class TrackFixture : public testing::Test {
protected:
    /// The next step; the first one activates the model. Step n is at 10 n seconds.
    const monitor::TrackAnswer& step(const Names& observations, const Names& commands = {},
                                     const std::vector<Lossy>& lossy = {})
    {
        start();
        return tracker_->advance(makeInput(++number_, observations, commands, lossy));
    }
    monitor::TrackInput makeInput(std::size_t number, const Names& observations,
                                  const Names& commands = {},
                                  const std::vector<Lossy>& lossy = {}) const
    {
        monitor::TrackInput made;
        made.step = number;
        made.t = 10.0 * static_cast<double>(number);
        made.values = input(*active_, commands, observations);
        for (const Lossy& one : lossy) {
            made.lossy.push_back(
                {active_->index(one.given), active_->index(one.fallback), one.probability});
        }
        return made;
    }
    void start()
    {
        if (!active_) {
            active_ = model_.activate();
        }
        if (!tracker_) {
            tracker_ =
                std::make_unique<monitor::Tracker>(active_->engine, *active_->plant, settings_);
        }
    }
    /// What differs in a hypothesis, as "a.mode=broken@3", and "!" before commands that got lost at this step.
    std::string text(const monitor::Hypothesis& hypothesis) const
    {
        std::set<std::string> words;
        for (const auto& [variable, since] : hypothesis.since) {
            words.insert(active_->plant->atom(since.value)->id + "@" + std::to_string(since.step));
        }
        for (const plant::AtomIndex lost : hypothesis.lost) {
            words.insert("!" + active_->plant->atom(lost)->id);
        }
        std::string text;
        for (const std::string& word : words) {
            text += (text.empty() ? "" : " ") + word;
        }
        return text;
    }
    /// Of all hypotheses, most probable first.
    Names texts() const
    {
        Names texts;
        for (const monitor::HypothesisPointer& hypothesis : tracker_->answer().hypotheses) {
            texts.push_back(text(*hypothesis));
        }
        return texts;
    }
    /// The probability of a hypothesis, 0 when there is none with that text.
    double probability(const std::string& wanted) const
    {
        const Names all = texts();
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i] == wanted) {
                return tracker_->answer().probabilities[i];
            }
        }
        return 0.0;
    }
    const monitor::Hypothesis& best() const { return *tracker_->answer().hypotheses.front(); }

    /// A valve NAME.position that is told by NAME.request, with NAME.flow as its only reading: it opens with probability
    /// `opens`, and gets stuck closed with probability 1/64 while it is closed.
    void addValve(const std::string& name, double opens)
    {
        model_.mode(name + ".position", {"closed", "open", "stuck!"});
        model_.command(name + ".request", {"none", "open", "close"});
        model_.condition(name + ".flow", {"0", "1"});
        model_.law("!" + name + ".position=closed | " + name + ".flow=0");
        model_.law("!" + name + ".position=stuck | " + name + ".flow=0");
        model_.law("!" + name + ".position=open | " + name + ".flow=1");
        model_.nominal(name + ".position=closed", name + ".position=open", opens,
                       name + ".request=open");
        model_.nominal(name + ".position=open", name + ".position=closed", opens,
                       name + ".request=close");
        model_.fault(name + ".position=closed", name + ".position=stuck", 1.0 / 64);
    }

    MutedTrace muted_;
    HandMade model_;
    std::unique_ptr<ActivePlant> active_;
    monitor::TrackSettings settings_;
    std::unique_ptr<monitor::Tracker> tracker_;
    std::size_t number_ = 0;
};
