// What the tests of the exact filter have in common.
#pragma once

#include "tests/reference/ExactFilter.h"

#include "language/Reader.h"
#include "plant/Names.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// A system `s` of a few statements, so that atoms have names such as "s.m=ok"; here without the "s.".
class ExactFilterFixture : public testing::Test {
protected:
    void model(const std::string& statements, FilterSettings settings = {})
    {
        filter_.reset();
        read_ = language::readModelText("test.itms", "system s {\n" + statements + "\n}\n");
        for (const text::Diagnostic& error : read_.errors) {
            ADD_FAILURE() << error.format();
        }
        ASSERT_TRUE(read_.model);
        names_ = plant::Names(*read_.model);
        for (const auto& [command, probability] : read_.bindings.lost) {
            settings.lost[command] = probability;
        }
        settings_ = std::move(settings);
    }
    const StateVar* variable(const std::string& name) const { return names_.variable("s." + name); }
    const Atom* atom(const std::string& name) const { return names_.atom("s." + name); }
    std::vector<const Atom*> atoms(const std::vector<std::string>& names) const
    {
        std::vector<const Atom*> result;
        for (const std::string& name : names) {
            result.push_back(atom(name));
        }
        return result;
    }
    const FilterAnswer& step(const std::vector<std::string>& commands = {},
                             const std::vector<std::string>& observations = {})
    {
        if (!filter_) {
            filter_ = std::make_unique<ExactFilter>(*read_.model, settings_);
        }
        return filter_->advance({atoms(commands), atoms(observations)});
    }
    ExactFraction probability(const std::string& value) const
    {
        return filter_->answer().probability(atom(value));
    }
    ExactFraction likelihood() const { return filter_->answer().likelihood; }

    /// A mode to which models add a fault.
    const std::string breakable = "mode m { ok initial broken fault }\n";

    language::ReadResult read_;
    plant::Names names_;
    FilterSettings settings_;
    std::unique_ptr<ExactFilter> filter_;
};
