// Feeds the reader of model files with files whose pieces were taken out, doubled, combined and exchanged: most of them are
// model files still. What is read must mean the same when it is laid out, and when it is written as data and read again.
#include "fuzz/Require.h"
#include "fuzz/TreePieces.h"
#include "language/Reader.h"
#include "language/json/ModelJson.h"
#include "language/syntax/Formatter.h"
#include "plant/ActiveModel.h"
#include "plant/Fingerprint.h"
#include "tests/reference/Random.h"

#include <algorithm>
#include <cstdint>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

language::ReadOptions small()
{
    language::ReadOptions options;
    options.expansion = {.components = 200,
                         .repetitions = 2000,
                         .domainClauses = 20000,
                         .lawClauses = 200,
                         .bytes = std::uint64_t{1} << 30U};
    return options;
}

language::ReadResult readText(const std::string& name, const std::string& text)
{
    return language::readModelText(name, text, small());
}

// What the plant is, once the engine is set up over it.
std::string fingerprintOf(language::ReadResult& read)
{
    plant::ActiveModel active(*read.model);
    return plant::fingerprint(plant::Plant(*read.model), read.bindings);
}

// The text with a piece replaced.
std::string with(const std::string& text, const Piece& piece, const std::string& other)
{
    return text.substr(0, piece.begin) + other + text.substr(piece.begin + piece.length);
}

std::string bytesOf(const std::string& text, const Piece& piece)
{
    return text.substr(piece.begin, piece.length);
}

/// A piece of the same kind from the donor; the piece itself when there is none.
std::string likeIt(Random& random, const std::string& text, const Piece& piece,
                   const std::string& donor, const std::vector<Piece>& donated)
{
    std::vector<Piece> alike;
    std::copy_if(donated.begin(), donated.end(), std::back_inserter(alike),
                 [&](const Piece& one) { return one.kind == piece.kind; });
    return alike.empty() ? bytesOf(text, piece) : bytesOf(donor, random.pick(alike));
}

std::string changed(Random& random, const Piece& piece, const std::string& before,
                    const std::string& other)
{
    const std::vector<std::string> connectives{" & ", " | ", " -> ", " <-> "};
    const std::vector<std::string> numbers{"0",    "1",    "2",  "0.5",
                                           "1e-9", "1000", "-1", "0.3333333333"};
    switch (piece.kind) {
    case PieceKind::declaration:
    case PieceKind::member:
    case PieceKind::looped:
        return random.chance(30) ? "" : random.chance(50) ? before + "\n" + other : other;
    case PieceKind::formula:
        if (random.chance(25)) return "!(" + before + ")";
        return random.chance(50)
                   ? other
                   : "((" + before + ")" + random.pick(connectives) + "(" + other + "))";
    case PieceKind::number:
        if (random.chance(40)) return random.pick(numbers);
        return random.chance(50) ? other : "(" + before + " * " + other + ")";
    case PieceKind::computed:
        return random.chance(50) ? other : "max(" + before + ", " + other + ")";
    case PieceKind::value: return random.chance(30) ? before + " fault" : before + ", " + other;
    case PieceKind::path:
    case PieceKind::name: break;
    }
    return other;
}

std::size_t give(const std::string& text, std::uint8_t* data, std::size_t maxSize)
{
    const std::size_t size = std::min(text.size(), maxSize);
    std::copy_n(text.begin(), size, data);
    return size;
}

std::string textOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Some pieces of the text change, with what the donor has of their kind.
std::string mutated(Random& random, std::string text, const std::string& donor)
{
    const std::vector<Piece> donated = piecesOf(text::SourceText("donor.itms", donor));
    for (int i = random.between(1, 3); i > 0; --i) {
        const std::vector<Piece> pieces = piecesOf(text::SourceText("fuzz.itms", text));
        if (pieces.empty()) break;
        const Piece& piece = random.pick(pieces);
        const std::string other = likeIt(random, text, piece, donor, donated);
        text = with(text, piece, changed(random, piece, bytesOf(text, piece), other));
    }
    return text;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned int seed)
{
    Random random(seed);
    const std::string text = textOf(data, size);
    if (random.chance(10)) return LLVMFuzzerMutate(data, size, maxSize);
    const std::string made = mutated(random, text, text);
    if (made == text || made.size() > maxSize) return LLVMFuzzerMutate(data, size, maxSize);
    return give(made, data, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* one, std::size_t oneSize,
                                                 const std::uint8_t* other, std::size_t otherSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned int seed)
{
    Random random(seed);
    return give(mutated(random, textOf(one, oneSize), textOf(other, otherSize)), out, maxSize);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = textOf(data, size);
    language::ReadResult read = readText("fuzz.itms", text);
    for (const text::Diagnostic& error : read.errors) {
        requireShown(error);
    }
    const language::Formatted formatted = language::format(text::SourceText("fuzz.itms", text));
    if (!formatted.errors.empty()) {
        require(!read.model, "what cannot be laid out is no model");
        return 0;
    }
    language::ReadResult laidOut = readText("fuzz.itms", formatted.text);
    require(laidOut.errors.size() == read.errors.size(), "what is laid out has the same mistakes");
    require(!laidOut.model == !read.model, "and is a model when it was one");
    if (!read.model) return 0;

    const std::string data1 = language::modelJson(read);
    language::ReadResult asData = readText("fuzz.json", data1);
    require(asData.model != nullptr, "what is written as data can be read");
    require(language::modelJson(asData) == data1, "and is written again as it is");

    const std::string meaning = fingerprintOf(read);
    require(fingerprintOf(laidOut) == meaning, "laying out does not change the meaning");
    require(fingerprintOf(asData) == meaning, "both front ends make the same of it");
    return 0;
}
