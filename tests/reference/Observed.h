// What a run of an engine let be seen, as text.
#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <vector>

/// The results and the trace of a run, piece by piece, in order.
class Observed {
public:
    struct Piece {
        bool trace;
        std::string what;
        std::string text;
    };

    void result(const std::string& what, std::string text)
    {
        pieces.push_back({false, what, std::move(text)});
    }
    void trace(const std::string& what, std::string text)
    {
        pieces.push_back({true, what, std::move(text)});
    }

    std::vector<Piece> pieces;
};

/// The first piece in which two runs differ, with the lines around the difference; empty when they are the same.
/// `traces` false: only the results are compared.
std::string firstDifference(const Observed& expected, const Observed& seen, bool traces = true);

/// Takes what goes to std::cout and std::cerr while it lives, or keeps std::cout in a failed state (`muted`).
/// In what it took, every address is `PTR` (a null one stays `0`), and `<flush>` marks each flush.
class Capture {
public:
    explicit Capture(bool muted);
    ~Capture();
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    /// What was printed since the last call; standard error after standard output.
    std::string take();

private:
    class FlushMarkingBuffer : public std::stringbuf {
    protected:
        int sync() override
        {
            sputn("<flush>", 7);
            return 0;
        }
    };

    bool muted_;
    FlushMarkingBuffer out_;
    std::stringbuf err_;
    std::streambuf* previousOut_;
    std::streambuf* previousErr_;
};
