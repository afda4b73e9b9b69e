#include "language/json/JsonText.h"

#include "text/JsonText.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_set>
#include <vector>

namespace language {

namespace {

using nlohmann::json;

// Passes over the text once, for what is wrong with it and where.
class SyntaxCheck {
public:
    SyntaxCheck(const text::SourceText& source, Report& report) : source_(source), report_(report)
    {
    }

    bool null() { return value(); }
    bool boolean(bool) { return value(); }
    bool number_integer(json::number_integer_t) { return value(); }
    bool number_unsigned(json::number_unsigned_t) { return value(); }
    bool number_float(json::number_float_t, const std::string&) { return value(); }
    bool string(std::string&) { return value(); }
    bool binary(json::binary_t&) { return value(); }
    bool start_object(std::size_t) { return open(); }
    bool start_array(std::size_t) { return open(); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }

    bool key(std::string& name)
    {
        Level& level = levels_.back();
        if (!level.keys.insert(name).second) {
            const std::string place = pointer();
            report_.take(source_.number(),
                         source_.error({},
                                       (place.empty() ? "" : place + ": ") + "the key " +
                                           text::quoted(name) + " is there twice",
                                       "each key once"));
            return false;
        }
        level.key = name;
        return true;
    }

    bool parse_error(std::size_t position, const std::string& token, const json::exception& error)
    {
        const std::size_t size = source_.text().size();
        const text::JsonMistake mistake = text::jsonMistake(error.what());
        const std::string reason = reasonOf(mistake, error.what());
        // Only for some tokens is `token` the token alone.
        const bool isToken = reason.ends_with(" string literal") ||
                             reason.ends_with(" number literal") || reason == tooLarge;
        const std::size_t length = isToken ? token.size() : 1;
        const std::size_t end = std::min(position, size + 1);
        report_.take(source_.number(),
                     source_.error(source_.range(end - std::min(end, length), length),
                                   "this is not JSON: " + reason, expectedOf(mistake)));
        return false;
    }

private:
    static constexpr const char* tooLarge = "the number is too large";

    struct Level {
        std::unordered_set<std::string> keys; ///< of an object
        std::string key;
        std::size_t values = 0; ///< so far
    };

    bool value()
    {
        if (!levels_.empty()) ++levels_.back().values;
        return true;
    }
    bool open()
    {
        levels_.emplace_back();
        return true;
    }
    bool close()
    {
        levels_.pop_back();
        return value();
    }

    std::string pointer() const
    {
        std::string made;
        for (std::size_t i = 0; i + 1 < levels_.size(); ++i) {
            const Level& level = levels_[i];
            made += "/" + (level.keys.empty() ? std::to_string(level.values) : shownKey(level.key));
        }
        return made;
    }
    // A key of whatever bytes, short and printable, without the quotes.
    static std::string shownKey(const std::string& key)
    {
        const std::string shown = text::quoted(key);
        return shown.substr(1, shown.size() - 2);
    }

    static std::string reasonOf(const text::JsonMistake& mistake, std::string_view parserMessage)
    {
        if (parserMessage.find("number overflow") != std::string_view::npos) return tooLarge;
        return mistake.found.empty() ? "it cannot be read" : mistake.found;
    }

    static std::string expectedOf(const text::JsonMistake& mistake)
    {
        if (mistake.quotesText) return {};
        const bool closing = mistake.expected == "'}'" || mistake.expected == "']'";
        return closing ? "',' or " + mistake.expected : mistake.expected;
    }

    const text::SourceText& source_;
    Report& report_;
    std::vector<Level> levels_;
};

} // namespace

std::unique_ptr<json> parseJson(const text::SourceText& source, Report& report)
{
    if (const std::size_t zero = text::zeroByte(source.text()); zero != std::string_view::npos) {
        const text::Message what = text::zeroByteMistake();
        report.take(source.number(),
                    source.error(source.range(zero, 1), what.message, what.expected));
        return nullptr;
    }
    SyntaxCheck check(source, report);
    if (json::sax_parse(source.text(), &check)) {
        return std::make_unique<json>(json::parse(source.text()));
    }
    return nullptr;
}

} // namespace language
