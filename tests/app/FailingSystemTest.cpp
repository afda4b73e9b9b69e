// What is in the files when the system fails: at every call of a run, in every way that the call can fail.
#include "tests/app/Program.h"
#include "tests/app/Workshop.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <sstream>

using testing::AnyOf;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

using Texts = std::vector<std::string>;

// How a call can fail; see FailingSystem.cpp.
const std::map<std::string, Texts> ways{
    {"open", {"EIO", "EINTR", "EMFILE", "ENOSPC+", "kill"}},
    {"fopen", {"EIO", "EMFILE", "kill"}},
    {"mkostemp", {"EINTR", "EMFILE", "ENOSPC+", "kill", "killed"}},
    {"read", {"EIO", "EINTR", "short", "kill"}},
    {"write", {"EIO", "EINTR", "ENOSPC", "ENOSPC+", "short", "cut", "kill", "killed"}},
    {"fsync", {"EIO", "EINTR", "ENOSPC+", "kill", "killed"}},
    {"ftruncate", {"EIO", "EINTR", "kill", "killed"}},
    {"close", {"EIO", "EINTR", "ENOSPC", "kill"}},
    {"rename", {"EIO", "ENOSPC+", "kill", "killed"}},
    {"fchmod", {"EIO", "kill"}},
    {"fchown", {"EIO", "kill"}},
    {"lock", {"EIO", "EINTR", "kill"}},
    {"unlink", {"EIO", "kill", "killed"}}};

constexpr int killed = 128 + 9;

class FailingSystem : public Workshop {
protected:
    FailingSystem()
    {
        std::string log;
        for (int t = 0; t < 12; ++t) {
            const std::string second = std::to_string(t);
            log += R"({"t": )" + second + R"(, "observations": {"FT-1": 1, "FT-2": )" +
                   (t < 7 ? "1" : "0") + "}}\n";
        }
        write("log.jsonl", log);
    }

    /// Does `prepare`, runs the program, and asks `judge` whether all is well, once for each failure of each call. The
    /// run without a failure is judged first.
    void tryAll(const Texts& arguments, const std::function<void()>& prepare,
                const std::function<void(const ProgramRun&)>& judge)
    {
        prepare();
        const ProgramRun whole = run(arguments, 0, "", path("calls"));
        ASSERT_EQ(whole.status, 0) << whole.err;
        std::istringstream log(read("calls"));
        std::filesystem::remove(path("calls"));
        judge(whole);
        std::size_t number = 0;
        for (std::string call; std::getline(log, call);) {
            ++number;
            name_ = call.substr(0, call.find(' '));
            for (const std::string& how : ways.at(name_)) {
                SCOPED_TRACE("call " + std::to_string(number) + ", " + call + ": " + how);
                prepare();
                const ProgramRun broken = run(arguments, number, how, "");
                EXPECT_THAT(broken.status, AnyOf(0, 2, killed)) << broken.err;
                if (losesText(call, how)) {
                    EXPECT_EQ(broken.status, 2);
                }
                if (broken.status == 2) {
                    EXPECT_THAT(broken.err, Not(IsEmpty()));
                }
                judge(broken);
                ++tried_;
                if (HasFailure()) return;
            }
        }
        EXPECT_GT(number, 4U) << "calls are seen";
        RecordProperty("failures", static_cast<int>(tried_));
    }

    /// The names of what is in the folder, but for what only a process that was killed may leave, and one that could
    /// not remove it.
    void expectNames(const ProgramRun& run, Texts expected) const
    {
        Texts there = names();
        if (run.status == killed || name_ == "unlink") {
            std::erase_if(there, [](const std::string& name) {
                return name.front() == '.' || name.ends_with(".lock");
            });
        }
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(there, expected);
    }

    void clear() const
    {
        for (const std::string& name : names()) {
            if (name != "log.jsonl") std::filesystem::remove(path(name));
        }
        std::filesystem::copy_file(ITMS_ROOT "/tests/app/models/pipe.itms", path("pipe.itms"));
    }

    Texts followed(const Texts& more) const
    {
        Texts arguments{"run", path("pipe.itms"), path("log.jsonl"), "--format", "jsonl", "-q"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    static ProgramRun run(const Texts& arguments, std::size_t call, const std::string& how,
                          const std::string& log)
    {
        return runProgram(arguments, {{},
                                      {{"LD_PRELOAD", ITMS_FAILING_SYSTEM},
                                       {"ITMS_FAILING_CALL", std::to_string(call)},
                                       {"ITMS_FAILING_HOW", how},
                                       {"ITMS_CALLS", log}},
                                      false});
    }

private:
    // Whether the system says that something of what is to be kept may not have been written.
    static bool losesText(const std::string& call, const std::string& how)
    {
        const bool fails = how == "EIO" || how.starts_with("ENOSPC");
        const bool keeps = call.ends_with("/answer") || call.ends_with("/truth");
        return fails && (call.starts_with("fsync ") || call.starts_with("rename ") ||
                         call.starts_with("write ") || (call.starts_with("close ") && keeps));
    }

    std::string name_; // of the call that failed last
    std::size_t tried_ = 0;
};

// Not yet begun, or the beginning of the new one, which is whole where all went well.
void expectOldOrBegun(const ProgramRun& run, const std::string& text, const std::string& old,
                      const std::string& whole)
{
    if (run.status == 0) {
        EXPECT_EQ(text, whole);
    } else if (text != old) {
        EXPECT_EQ(text, whole.substr(0, text.size()));
    }
}

// The page without the text of the model.
std::string withoutSource(const std::string& page)
{
    const std::string key = R"(","text":")";
    const std::size_t source = page.find(R"("sources":[)");
    const std::size_t begin = page.find(key, source) + key.size() - 1;
    std::size_t end = begin + 1;
    while (page[end] != '"') {
        end += page[end] == '\\' ? 2 : 1;
    }
    return page.substr(0, begin) + "null" + page.substr(end + 1);
}

void expectOldOrNew(const ProgramRun& run, const std::string& text, const std::string& old,
                    const std::string& whole)
{
    if (run.status == 0) {
        EXPECT_EQ(text, whole);
    } else {
        EXPECT_THAT(text, AnyOf(old, whole));
    }
}

} // namespace

TEST_F(FailingSystem, LeavesAModelOrWhatFmtMadeOfIt)
{
    const std::string old = "// as it was\n" + read("pipe.itms") + "   \n";
    clear();
    write("pipe.itms", old);
    ASSERT_EQ(runProgram({"fmt", path("pipe.itms")}).status, 0);
    const std::string whole = read("pipe.itms");
    ASSERT_NE(old, whole);
    tryAll(
        {"fmt", path("pipe.itms")},
        [&] {
            clear();
            write("pipe.itms", old);
        },
        [&](const ProgramRun& run) {
            expectOldOrNew(run, read("pipe.itms"), old, whole);
            expectNames(run, {"log.jsonl", "pipe.itms"});
        });
}

TEST_F(FailingSystem, LeavesAModelOfTwoNamesWholeSomewhere)
{
    const std::string old = "// as it was\n" + read("pipe.itms") + "   \n";
    write("other.itms", old);
    ASSERT_EQ(runProgram({"fmt", path("other.itms")}).status, 0);
    const std::string whole = read("other.itms");
    tryAll(
        {"fmt", path("pipe.itms")},
        [&] {
            clear();
            write("pipe.itms", old);
            std::filesystem::create_hard_link(path("pipe.itms"), path("other.itms"));
        },
        [&](const ProgramRun& run) {
            EXPECT_EQ(read("pipe.itms"), read("other.itms"));
            if (run.status == 0) {
                EXPECT_EQ(read("pipe.itms"), whole);
            }
            bool stands = false;
            for (const std::string& name : names()) {
                stands = stands || read(name) == old || read(name) == whole;
            }
            EXPECT_TRUE(stands);
        });
}

TEST_F(FailingSystem, LeavesAnExportOrTheNewOne)
{
    const std::string whole = runProgram({"export", path("pipe.itms")}).out;
    tryAll(
        {"export", path("pipe.itms"), "-o", path("pipe.json")},
        [&] {
            clear();
            write("pipe.json", "precious\n");
        },
        [&](const ProgramRun& run) {
            expectOldOrNew(run, read("pipe.json"), "precious\n", whole);
            expectNames(run, {"log.jsonl", "pipe.itms", "pipe.json"});
        });
}

TEST_F(FailingSystem, LeavesAReportOrTheNewOne)
{
    const Texts arguments{"report", path("pipe.itms"), path("log.jsonl"), "-q", "-o"};
    const auto to = [&arguments](const std::string& place) {
        Texts all = arguments;
        all.push_back(place);
        return all;
    };
    const std::string whole = runProgram(to("-")).out;
    // A page goes without the text of a model that cannot be read any more.
    const std::string without = withoutSource(whole);
    ASSERT_NE(without, whole);
    tryAll(
        to(path("page.html")),
        [&] {
            clear();
            write("page.html", "precious\n");
        },
        [&](const ProgramRun& run) {
            const bool isWhole = read("page.html") != without;
            expectOldOrNew(run, read("page.html"), "precious\n", isWhole ? whole : without);
            expectNames(run, {"log.jsonl", "page.html", "pipe.itms"});
        });
}

TEST_F(FailingSystem, IsNoticedByARunThatPrints)
{
    const std::string whole = runProgram(followed({})).out;
    tryAll(
        followed({}), [&] { clear(); },
        [&](const ProgramRun& run) { expectOldOrBegun(run, run.out, "", whole); });
}

TEST_F(FailingSystem, IsNoticedByARunThatWritesAFile)
{
    const std::string whole = runProgram(followed({})).out;
    tryAll(
        followed({"-o", path("answer")}),
        [&] {
            clear();
            write("answer", "precious\n");
        },
        [&](const ProgramRun& run) {
            expectOldOrBegun(run, read("answer"), "precious\n", whole);
            expectNames(run, {"answer", "log.jsonl", "pipe.itms"});
        });
}

TEST_F(FailingSystem, IsNoticedByASimulation)
{
    const Texts arguments{"simulate", path("pipe.itms"),  "--random", "3",
                          "--input",  "pipe.inflow=high", "--truth",  path("truth")};
    write("truth", "precious\n");
    const std::string out = runProgram(arguments).out;
    const std::string truth = read("truth");
    tryAll(
        arguments,
        [&] {
            clear();
            write("truth", "precious\n");
        },
        [&](const ProgramRun& run) {
            expectOldOrBegun(run, run.out, "", out);
            expectOldOrBegun(run, read("truth"), "precious\n", truth);
            expectNames(run, {"log.jsonl", "pipe.itms", "truth"});
        });
}

TEST_F(FailingSystem, LetsARunWithACheckpointBeResumed)
{
    const std::string whole = runProgram(followed({})).out;
    const Texts arguments = followed({"-o", path("answer"), "--checkpoint", path("memory"),
                                      "--checkpoint-every", "4", "--resume", "--final"});
    // The run before ended after six steps.
    const std::string log = read("log.jsonl");
    std::size_t sixth = 0;
    for (int line = 0; line < 6; ++line) {
        sixth = log.find('\n', sixth) + 1;
    }
    write("log.jsonl", log.substr(0, sixth));
    ASSERT_EQ(runProgram(arguments).status, 0);
    const std::string answer = read("answer");
    const std::string memory = read("memory");
    write("log.jsonl", log);

    tryAll(
        arguments,
        [&] {
            clear();
            write("answer", answer);
            write("memory", memory);
        },
        [&](const ProgramRun& run) {
            expectNames(run, {"answer", "log.jsonl", "memory", "pipe.itms"});
            EXPECT_EQ(read("answer"), whole.substr(0, read("answer").size()));
            if (run.status == 0) {
                EXPECT_EQ(read("answer"), whole);
            }
            const ProgramRun resumed = runProgram(arguments);
            EXPECT_EQ(resumed.status, 0) << resumed.err;
            EXPECT_EQ(read("answer"), whole);
        });
}

TEST_F(FailingSystem, LetsNoCheckpointTakeThePlaceOfAnotherFile)
{
    const Texts arguments = followed({"--checkpoint", path("memory")});
    write("memory", "precious\n");
    const ProgramRun refused = runProgram(arguments);
    ASSERT_THAT(refused.err, StartsWith(path("memory") + ": is no checkpoint, "));
    for (std::size_t call = 1; call <= 60; ++call) {
        for (const char* how : {"EIO", "EINTR"}) {
            SCOPED_TRACE("call " + std::to_string(call) + ": " + how);
            EXPECT_EQ(run(arguments, call, how, "").status, 2);
            EXPECT_EQ(read("memory"), "precious\n");
            std::filesystem::remove(path("memory.lock"));
        }
    }
}
