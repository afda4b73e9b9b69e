#include "text/JsonText.h"

#include "tests/reference/Random.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
using text::CountingIterator;
using text::JsonMistake;

std::string at(const std::string& line, text::Extent extent)
{
    return line.substr(extent.offset, extent.length);
}

// Notes each key of an object, as the line has it, and the value behind it.
struct Places : nlohmann::json_sax<json> {
    Places(const std::string& text, const std::size_t& count) : line(text), taken(count) {}

    bool null() override { return true; }
    bool boolean(bool /*value*/) override { return true; }
    bool number_integer(std::int64_t /*value*/) override { return true; }
    bool number_unsigned(std::uint64_t /*value*/) override { return true; }
    bool number_float(double /*value*/, const std::string& /*text*/) override { return true; }
    bool string(std::string& /*value*/) override { return true; }
    bool binary(json::binary_t& /*value*/) override { return true; }
    bool start_object(std::size_t /*size*/) override { return true; }
    bool start_array(std::size_t /*size*/) override { return true; }
    bool end_object() override { return true; }
    bool end_array() override { return true; }
    bool key(std::string& name) override
    {
        keys.push_back(name);
        texts.push_back(at(line, text::textBefore(line, taken)));
        values.push_back(at(line, text::valueAfter(line, taken)));
        return true;
    }
    bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                     const json::exception& error) override
    {
        message = error.what();
        return false;
    }

    const std::string& line;
    const std::size_t& taken;
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    std::vector<std::string> values;
    std::string message;
};

Places placesIn(const std::string& line, std::size_t& taken)
{
    Places places(line, taken);
    json::sax_parse(CountingIterator(line.data(), &taken),
                    CountingIterator(line.data() + line.size(), &taken), &places);
    return places;
}

JsonMistake mistakeIn(const std::string& line)
{
    std::size_t taken = 0;
    return text::jsonMistake(placesIn(line, taken).message);
}

TEST(JsonText, FindsAKeyAndWhatFollowsIt)
{
    const std::string line =
        R"({"a": 1, "b" :"x, \"y\\" , "c":[1, 2], "d": {"e": true}, "f":-1.5e3})";
    std::size_t taken = 0;
    const Places places = placesIn(line, taken);
    EXPECT_EQ(places.texts, (std::vector<std::string>{R"("a")", R"("b")", R"("c")", R"("d")",
                                                      R"("e")", R"("f")"}));
    EXPECT_EQ(places.values,
              (std::vector<std::string>{"1", R"("x, \"y\\")", "[", "{", "true", "-1.5e3"}));
}

TEST(JsonText, FindsKeysOfAnyText)
{
    Random random(7);
    const std::vector<std::string> pieces{"\\", "\"", "a", ":", "{", ",", "\n", "\xC3\xA4", " "};
    for (int round = 0; round < 500; ++round) {
        std::string name;
        for (int i = random.between(0, 8); i > 0; --i) {
            name += random.pick(pieces);
        }
        std::string line = "{" + text::jsonQuoted(name) + " : " + text::jsonQuoted(name) + "}";
        std::size_t taken = 0;
        const Places places = placesIn(line, taken);
        ASSERT_EQ(places.keys, std::vector<std::string>{name}) << line;
        ASSERT_EQ(places.texts.front(), text::jsonQuoted(name)) << line;
        ASSERT_EQ(places.values.front(), text::jsonQuoted(name)) << line;
    }
}

TEST(JsonText, GivesAPlaceForAValueThatIsMissing)
{
    const text::Extent none = text::valueAfter("{\"a\": ", 4);
    EXPECT_EQ(none.offset, 6U);
    EXPECT_EQ(none.length, 1U);
    EXPECT_EQ(at("{\"a\": \"open", text::valueAfter("{\"a\": \"open", 4)), "\"open");
}

TEST(JsonText, TakesFoundAndExpectedFromTheMessage)
{
    const JsonMistake literal = mistakeIn(R"({"a" x})");
    EXPECT_EQ(literal.found, "invalid literal");
    EXPECT_EQ(literal.expected, "':'");
    EXPECT_TRUE(literal.quotesText);
    const JsonMistake number = mistakeIn("[1.x]");
    EXPECT_EQ(number.found, "invalid number");
    EXPECT_EQ(number.expected, "digit after '.'");
    const JsonMistake unexpected = mistakeIn("[1, 2");
    EXPECT_EQ(unexpected.found, "unexpected end of input");
    EXPECT_EQ(unexpected.expected, "']'");
    EXPECT_FALSE(unexpected.quotesText);
}

// The text that is read last may look like a part of the message, or hold bytes of any kind.
TEST(JsonText, DoesNotTakeTheTextForTheMessage)
{
    EXPECT_EQ(mistakeIn("[\"; expected \x01").expected, "");
    EXPECT_EQ(text::jsonMistake("parse error - bad; last read: '\"; expected \x01'").expected, "");
}

TEST(JsonText, FindsNothingInAMessageOfAnotherForm)
{
    EXPECT_EQ(mistakeIn("[1e999]").found, "");
    EXPECT_EQ(text::jsonMistake("").found, "");
}

TEST(JsonText, QuotesAnyBytes)
{
    EXPECT_EQ(text::jsonQuoted("a"), "\"a\"");
    EXPECT_EQ(text::jsonQuoted("\"\\\n\x01"), R"("\"\\\n\u0001")");
    EXPECT_EQ(text::jsonQuoted("\xC3\xA4"), "\"\xC3\xA4\"");
    EXPECT_EQ(text::jsonQuoted("\xFF!"), "\"\xEF\xBF\xBD!\"");
}

} // namespace
