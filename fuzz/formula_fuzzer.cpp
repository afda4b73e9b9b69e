// Asks a plant any bytes. A formula is answered or has errors that can be shown; and what its negation is answered is the opposite.
#include "fuzz/FuzzPlant.h"

#include <cmath>
#include <cstdint>

namespace {

session::Session& followed()
{
    static FuzzPlant plant;
    static const bool advanced = (plant.advance(3), true);
    require(advanced, "the plant was followed");
    return plant.session();
}

monitor::Truth negation(monitor::Truth truth)
{
    switch (truth) {
    case monitor::Truth::isTrue: return monitor::Truth::isFalse;
    case monitor::Truth::isFalse: return monitor::Truth::isTrue;
    case monitor::Truth::open: break;
    }
    return monitor::Truth::open;
}

std::optional<monitor::QueryAnswer> asked(const std::string& formula)
{
    try {
        return followed().query(formula);
    } catch (const session::FormulaErrors& errors) {
        require(!errors.errors().empty(), "what is refused has an error");
        for (const text::Diagnostic& error : errors.errors()) requireShown(error);
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string formula(reinterpret_cast<const char*>(data), size);
    const auto answer = asked(formula);
    if (!answer) return 0;
    require(answer->probability >= 0 && answer->openProbability >= 0 &&
                answer->probability + answer->openProbability <= 1 + 1e-9,
            "probabilities are from 0 to 1");
    // Nested one deeper, it may be too deep.
    const auto opposite = asked("!(" + formula + "\n)");
    if (!opposite) return 0;
    require(opposite->best == negation(answer->best), "the negation is the opposite");
    require(std::abs(answer->probability + answer->openProbability + opposite->probability - 1) <
                1e-9,
            "and has the rest of the probability");
    return 0;
}
