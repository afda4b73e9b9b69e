// A folder of a test's own, in which the program is used as from a shell.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

/// The folder has a model, `pipe.itms`, and `day.jsonl`, three steps of telemetry for it.
class Workshop : public testing::Test {
protected:
    Workshop();
    ~Workshop() override;
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;

    /// What a command prints on both outputs, in their order, followed by `[STATUS]` when that is not 0. It is run in the
    /// folder, by bash, with itms in PATH and nothing on standard input.
    std::string shell(const std::string& command) const;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    void write(const std::string& name, const std::string& text) const;
    /// The text of a file; "(nothing)" when there is none.
    std::string read(const std::string& name) const;
    /// The names of all that is in the folder, in their order.
    std::vector<std::string> names() const;

private:
    std::filesystem::path folder_;
};
