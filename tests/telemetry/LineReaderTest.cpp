#include "telemetry/LineReader.h"

#include "tests/reference/Random.h"
#include "tests/telemetry/Telemetry.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> linesOf(const std::string& text,
                                 std::size_t mostBytes = telemetry::LineReader::unlimited)
{
    const TemporaryFile file(text);
    telemetry::LineReader reader(file.path(), mostBytes);
    std::vector<std::string> all;
    for (std::string_view line; reader.next(line);) {
        all.push_back(std::string(line) + (reader.tooLong() ? " ..." : ""));
        EXPECT_EQ(reader.lineNumber(), all.size());
    }
    std::string_view line;
    EXPECT_FALSE(reader.next(line));
    return all;
}

TEST(LineReader, TakesOffLineEnds)
{
    EXPECT_THAT(linesOf("a\nb\r\n\n\r\nc"), ElementsAre("a", "b", "", "", "c"));
    EXPECT_THAT(linesOf("a\n"), ElementsAre("a"));
    EXPECT_THAT(linesOf(""), IsEmpty());
}

TEST(LineReader, KeepsZeroBytesAndCarriageReturnsWithinALine)
{
    EXPECT_THAT(linesOf(std::string("a\0b\rc\n", 6)), ElementsAre(std::string("a\0b\rc", 5)));
}

TEST(LineReader, TellsHowMuchOfAFileIsDone)
{
    const TemporaryFile file("123\n5678901\n");
    telemetry::LineReader reader(file.path());
    EXPECT_EQ(reader.doneShare(), 0.0);
    std::string_view line;
    ASSERT_TRUE(reader.next(line));
    EXPECT_DOUBLE_EQ(reader.doneShare(), 4.0 / 12.0);
    while (reader.next(line)) {
    }
    EXPECT_EQ(reader.doneShare(), 1.0);
}

TEST(LineReader, CutsLinesThatAreTooLong)
{
    EXPECT_THAT(linesOf("1234\n12345\n123456789\n1234\r\n\n12345", 4),
                ElementsAre("1234", "1234 ...", "1234 ...", "1234", "", "1234 ..."));
    const std::string large(1000000, 'x');
    EXPECT_THAT(linesOf("a\n" + large + "\nb\n" + large, 10),
                ElementsAre("a", "xxxxxxxxxx ...", "b", "xxxxxxxxxx ..."));
}

TEST(LineReader, GivesLinesOfAnyLength)
{
    Random random(20);
    std::vector<std::string> expected;
    std::string text;
    for (int i = 0; i < 60; ++i) {
        expected.emplace_back(random.below(random.chance(10) ? 500000 : 9000),
                              static_cast<char>('a' + i % 26));
        text += expected.back() + "\n";
    }
    EXPECT_EQ(linesOf(text), expected);
}

} // namespace
