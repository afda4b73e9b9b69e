// What the parser does about mistakes: reports them, and finds the place to go on from.
#pragma once

#include "language/syntax/TokenInput.h"
#include "text/Diagnostic.h"

#include <vector>

namespace language {

/// Thrown when a file has as many mistakes as are reported of one.
struct TooManyMistakes {};

/// Reports one mistake for a statement and passes over the statement. At bytes that are no token it reports nothing more.
class Mistakes : public Recovery {
public:
    /// `whole` is what messages call the text.
    Mistakes(const text::SourceText& source, const syntax::Limits& limits, const TokenList& list,
             std::string_view whole = "the file");

    void recover(TokenInput& in, const Token* begin, std::size_t blocks,
                 const Mistake& mistake) override;

    /// All errors in the order of their places.
    std::vector<text::Diagnostic> take();

private:
    void report(const TokenInput& in, const Token* begin, std::size_t blocks,
                const Mistake& mistake);
    void add(const text::Range& range, std::string message, std::string expected, std::string hint);

    const text::SourceText& source_;
    const syntax::Limits& limits_;
    bool openComment_;
    std::string whole_;
    bool endReported_ = false; ///< a statement that the end of the file cuts off
    std::vector<text::Diagnostic> errors_;
};

} // namespace language
