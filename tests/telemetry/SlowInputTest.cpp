// Input that comes slowly: the writer goes on only when the step before was seen, so a reader that waits for more than it needs
// waits for ever.
#include "tests/telemetry/Telemetry.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <fmt/format.h>
#include <functional>
#include <gmock/gmock.h>
#include <pthread.h>
#include <semaphore>
#include <thread>
#include <unistd.h>

namespace {

using telemetry::StepReader;
using testing::HasSubstr;

class Pipe {
public:
    Pipe()
    {
        int ends[2] = {};
        if (pipe(ends) != 0) throw std::runtime_error("no pipe");
        // The reader opens the pipe again by its name.
        path = fmt::format("/dev/fd/{}", ends[0]);
        in_ = ends[0];
        out_ = ends[1];
    }
    ~Pipe()
    {
        close(in_);
        finish();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    void write(const std::string& text) const
    {
        EXPECT_EQ(::write(out_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void finish()
    {
        if (out_ >= 0) close(out_);
        out_ = -1;
    }

    std::string path;

private:
    int in_ = -1;
    int out_ = -1;
};

std::string nextShown(StepReader& reader)
{
    const auto next = reader.next();
    const auto* step = std::get_if<telemetry::Step>(&next);
    return step ? shown(*step) : "no step";
}

// Writes the parts of a text, each but the first when a step was read, and expects these steps.
void expectSteps(const std::vector<std::string>& parts, const std::vector<std::string>& steps)
{
    const language::ReadResult plant = readPlant();
    Pipe input;
    std::binary_semaphore seen(0);
    std::thread writer([&] {
        for (const std::string& part : parts) {
            for (const char each : part) {
                input.write(std::string(1, each));
            }
            if (&part != &parts.back()) seen.acquire();
        }
        input.finish();
    });
    StepReader reader(input.path, *plant.model, plant.bindings);
    for (const std::string& expected : steps) {
        EXPECT_THAT(nextShown(reader), HasSubstr(expected));
        seen.release();
    }
    EXPECT_EQ(nextShown(reader), "no step");
    writer.join();
}

TEST(SlowInput, OfLinesGivesAStepWithTheEndOfItsLine)
{
    expectSteps({"{\"t\": 1}\n", "{\"t\": 2}\n{\"t\"", ": 3}"}, {"1 t=1 ", "2 t=2 ", "3 t=3 "});
}

TEST(SlowInput, OfAWideTableGivesAStepWithTheEndOfItsRow)
{
    expectSteps({"t,FT-1\n1,2\n", "2,3\n\"3", "\",4"}, {"1 t=1 ", "2 t=2 ", "3 t=3 "});
}

TEST(SlowInput, OfALongTableGivesAStepWithTheFirstRowOfTheNext)
{
    expectSteps({"t,name,value\n1,FT-1,2\n1,TS-1,C\n2,FT-1,2\n", "3,FT-1,4\n", "3,TS-1,C"},
                {"1 t=1 ", "2 t=2 ", "3 t=3 "});
}

std::atomic<bool> signalled = false;

// Sends signals to this thread, whose handler ends reads, until `read` comes back.
void interruptWhile(const std::function<void()>& read)
{
    struct sigaction action = {};
    action.sa_handler = [](int) { signalled = true; };
    sigemptyset(&action.sa_mask);
    struct sigaction before = {};
    sigaction(SIGUSR1, &action, &before);
    std::atomic<bool> done = false;
    const pthread_t reader = pthread_self();
    std::thread sender([&] {
        while (!done) {
            pthread_kill(reader, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    read();
    done = true;
    sender.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(signalled);
}

// Begins with a step; then `half` of what comes is there, and after the signal `rest`, which gives the step `last`.
void expectInterruption(const std::string& first, const std::string& half, const std::string& rest,
                        const std::string& last)
{
    const language::ReadResult plant = readPlant();
    Pipe input;
    StepReader reader(input.path, *plant.model, plant.bindings);
    input.write(first + half);
    EXPECT_THAT(nextShown(reader), HasSubstr("1 t=0 "));
    const telemetry::ReaderState before = reader.state();
    interruptWhile([&reader] {
        const auto next = reader.next();
        ASSERT_TRUE(std::holds_alternative<telemetry::End>(next));
        EXPECT_TRUE(std::get<telemetry::End>(next).interrupted);
    });
    EXPECT_EQ(reader.state(), before);
    input.write(rest);
    input.finish();
    EXPECT_THAT(nextShown(reader), HasSubstr(last));
}

TEST(SlowInput, EndsForASignalAndCanGoOn)
{
    expectInterruption("{}\n", "{\"t\"", ": 4}\n", "2 t=4 ");
    expectInterruption("t,TS-1\n0,C\n", "4,\"wa", "rm\"\n", "2 t=4 ");
    expectInterruption("t,TS-1\n0,C\n", "4,\"\n", "\"\n5,C", "no step");
    expectInterruption("t,name,value\n0,TS-1,C\n4,TS-1,C\n", "4,FT-1", ",2\n", "2 t=4 ");
}

TEST(SlowInput, EndsForASignalInTheHeaderAndCanGoOn)
{
    const language::ReadResult plant = readPlant();
    for (const std::string half : {"", "t,FT", "t,\"\n"}) {
        Pipe input;
        StepReader reader(input.path, *plant.model, plant.bindings);
        input.write(half);
        interruptWhile([&reader] {
            const auto next = reader.next();
            ASSERT_TRUE(std::holds_alternative<telemetry::End>(next));
            EXPECT_TRUE(std::get<telemetry::End>(next).interrupted);
        });
        input.write(half.empty() ? "t,TS-1\n4,C\n" : half.back() == '\n' ? "\"\n" : "-1\n4,1\n");
        input.finish();
        EXPECT_THAT(nextShown(reader), HasSubstr(half.ends_with('\n') ? "no step" : "1 t=4 "));
    }
}

} // namespace
