#include "telemetry/JsonLine.h"

#include "text/JsonText.h"
#include "text/NearestName.h"

#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace telemetry {

namespace {

using Json = nlohmann::json;

constexpr const char* wholeStep =
    R"({"t": 12.5, "commands": {"XV-A": "open"}, "observations": {"FT-101": 0.02}})";

enum class Key { none, time, commands, observations };

// Takes the parser's events of one line.
class Handler : public nlohmann::json_sax<Json> {
public:
    /// What stays the same from line to line.
    struct Reader {
        StepBuilder& builder;
        TimeFormat& time;
        std::string_view timeKey;
        bool knownNamesOnly;
    };

    Handler(const Reader& reader, std::vector<std::size_t>* seen, std::size_t stamp,
            std::string_view line, std::size_t lineNumber, const std::size_t& taken)
        : builder_(reader.builder), reader_(reader), seen_(seen), stamp_(stamp), line_(line),
          lineNumber_(lineNumber), taken_(taken)
    {
    }

    bool null() override
    {
        return depth_ >= 2 || (depth_ == 1 && key_ != Key::time) || misplaced("null");
    }
    bool boolean(bool given) override
    {
        const std::string_view text = given ? "true" : "false";
        return depth_ >= 2 ? reading({Reading::Kind::text, 0, text}) : misplaced(text);
    }
    bool number_integer(number_integer_t given) override
    {
        return number(static_cast<double>(given), std::to_string(given));
    }
    bool number_unsigned(number_unsigned_t given) override
    {
        return number(static_cast<double>(given), std::to_string(given));
    }
    bool number_float(number_float_t given, const string_t& text) override
    {
        return number(given, text);
    }
    bool string(string_t& text) override
    {
        if (depth_ == 1 && key_ == Key::time) {
            return timeOf(text) ||
                   refuseValue({fmt::format("the time is the text {}", text::quoted(text)),
                                reader_.time.expected(), reader_.time.hint(text)});
        }
        return depth_ >= 2 ? reading({Reading::Kind::text, 0, text})
                           : misplaced("the text " + text::quoted(text));
    }
    bool binary(binary_t& /*value*/) override { return misplaced("binary data"); }
    bool start_array(std::size_t /*size*/) override
    {
        if (!isPassedOver()) return misplaced("an array");
        ++depth_;
        return true;
    }
    bool end_array() override
    {
        --depth_;
        return true;
    }
    bool start_object(std::size_t /*size*/) override
    {
        if ((depth_ >= 2 && !isPassedOver()) || (depth_ == 1 && key_ == Key::time))
            return misplaced("an object");
        ++depth_;
        return true;
    }
    bool end_object() override
    {
        --depth_;
        return true;
    }
    bool key(string_t& name) override
    {
        if (depth_ > 2) return true;
        keyEnd_ = taken_;
        return depth_ == 1 ? outerKey(name) : innerKey(name);
    }
    bool parse_error(std::size_t position, const std::string& lastToken,
                     const nlohmann::detail::exception& error) override;

    std::variant<Step, text::Diagnostic> result();

private:
    /// Within the value of a name that is not known.
    bool isPassedOver() const { return depth_ >= 2 && nameIndex_ == Names::none; }
    bool timeOf(std::string_view text);
    bool outerKey(const std::string& name);
    bool innerKey(const std::string& name);
    bool number(double number, std::string_view text);
    bool reading(const Reading& reading);
    bool misplaced(std::string_view found);
    bool refuse(const text::Message& what, text::Extent extent)
    {
        error_ = text::errorAt(what, {}, {lineNumber_, extent.offset + 1}, line_, extent.length);
        return false;
    }
    bool refuseKey(const text::Message& what)
    {
        return refuse(what, text::textBefore(line_, keyEnd_));
    }
    bool refuseValue(const text::Message& what)
    {
        return refuse(what, text::valueAfter(line_, keyEnd_));
    }
    bool repeated(const std::string& name)
    {
        return refuseKey({fmt::format("{} stands twice in this step", text::quoted(name)),
                          "each name once", ""});
    }

    StepBuilder& builder_;
    const Reader& reader_;
    std::vector<std::size_t>* seen_;
    std::size_t stamp_;
    std::string_view line_;
    std::size_t lineNumber_;
    const std::size_t& taken_;
    int depth_ = 0;
    Key key_ = Key::none;
    bool has_[4] = {};
    std::string name_;
    std::uint32_t nameIndex_ = Names::none;
    std::size_t keyEnd_ = 0;
    std::optional<double> time_;
    std::size_t timeKeyEnd_ = 0;
    std::optional<text::Diagnostic> error_;
};

bool Handler::outerKey(const std::string& name)
{
    key_ = name == reader_.timeKey  ? Key::time
           : name == "commands"     ? Key::commands
           : name == "observations" ? Key::observations
                                    : Key::none;
    if (key_ == Key::none) {
        // A name that is not near to any of the three may be a name of the plant.
        std::string hint = text::didYouMean(name, {reader_.timeKey, "commands", "observations"});
        const std::uint32_t index = builder_.names().find(name);
        if (hint.empty() && index != Names::none) {
            hint = fmt::format(
                "it belongs in '{}'",
                builder_.names().isUnknown(index, Side::observation) ? "commands" : "observations");
        }
        return refuseKey({fmt::format("{} is no key of a step", text::quoted(name)),
                          fmt::format("'{}', 'commands' or 'observations'", reader_.timeKey), hint});
    }
    bool& before = has_[static_cast<std::size_t>(key_)];
    if (before) return repeated(name);
    before = true;
    return true;
}

bool Handler::innerKey(const std::string& name)
{
    const Side side = key_ == Key::commands ? Side::command : Side::observation;
    nameIndex_ = builder_.names().find(name);
    if (nameIndex_ == Names::none && !reader_.knownNamesOnly) {
        builder_.notes().passOverKey(name, builder_.names());
        return true;
    }
    if (builder_.names().isUnknown(nameIndex_, side))
        return refuseKey(builder_.names().unknown(name, side));
    std::size_t& before = seen_[static_cast<std::size_t>(side)][nameIndex_];
    if (before == stamp_) return repeated(name);
    before = stamp_;
    name_ = name;
    return true;
}

bool Handler::number(double number, std::string_view text)
{
    if (depth_ >= 2) return reading({Reading::Kind::number, number, text});
    if (depth_ != 1 || key_ != Key::time) return misplaced(text);
    time_ = reader_.time.read(number);
    if (!time_) return misplaced(text);
    timeKeyEnd_ = keyEnd_;
    return true;
}

// A number in quotes is no time, unless the times are said to be dates.
bool Handler::timeOf(std::string_view text)
{
    if (!reader_.time.readsDates() || (parseNumber(text) && !reader_.time.isKnown())) return false;
    time_ = reader_.time.read(text);
    timeKeyEnd_ = keyEnd_;
    if (auto finding = reader_.time.takeFinding()) builder_.notes().say(std::move(*finding));
    return time_.has_value();
}

bool Handler::reading(const Reading& reading)
{
    if (isPassedOver()) return true;
    const Side side = key_ == Key::commands ? Side::command : Side::observation;
    const auto mistake = builder_.add(nameIndex_, name_, side, reading);
    return !mistake || refuseValue(*mistake);
}

// A value that cannot stand where it does.
bool Handler::misplaced(std::string_view found)
{
    if (depth_ == 0) {
        const std::size_t begin = std::min(line_.find_first_not_of(" \t"), line_.size());
        return refuse({fmt::format("found {} where a step begins", found), wholeStep, ""},
                      {begin, 1});
    }
    if (depth_ >= 2) {
        return refuseValue({fmt::format("the value of {} is {}", text::quoted(name_), found),
                            "a number or a text", "leave out what was not observed, or write null"});
    }
    if (key_ == Key::time)
        return refuseValue({fmt::format("the time is {}", found), reader_.time.expected(), ""});
    return refuseValue({fmt::format("the value of '{}' is {}",
                                    key_ == Key::commands ? "commands" : "observations", found),
                        R"(an object of names and values, such as {"FT-101": 0.02})", ""});
}

bool Handler::parse_error(std::size_t position, const std::string& /*lastToken*/,
                          const nlohmann::detail::exception& error)
{
    constexpr int outOfRange = 406;
    if (error.id == outOfRange)
        return refuseValue({"this number is too large", "a finite number", ""});
    const text::JsonMistake mistake = text::jsonMistake(error.what());
    const std::size_t offset = std::min(position == 0 ? 0 : position - 1, line_.size());
    return refuse({fmt::format("this is not JSON: {}",
                               mistake.found.empty() ? "it cannot be read" : mistake.found),
                   mistake.expected, fmt::format("a step is one line: {}", wholeStep)},
                  {offset, 1});
}

std::variant<Step, text::Diagnostic> Handler::result()
{
    if (!error_) {
        const auto before = builder_.time();
        const double t = time_ ? *time_ : before ? *before + builder_.stepSeconds() : 0;
        if (std::isfinite(t) && before && !std::isfinite(t - *before)) {
            refuse(gapTooLong(t, *before),
                   time_ ? text::valueAfter(line_, timeKeyEnd_) : text::Extent{0, 1});
        } else if (!std::isfinite(t) || !builder_.timeIsLater(t)) {
            const text::Extent extent =
                time_ ? text::valueAfter(line_, timeKeyEnd_) : text::Extent{0, 1};
            const std::string same = time_ ? "" : ", one step length after the step before";
            refuse({fmt::format("the time is {}{}", t, same),
                    fmt::format("a time later than that of the step before, {}", before.value_or(0)),
                    ""},
                   extent);
        }
        if (!error_) return builder_.finish(t);
    }
    return std::move(*error_);
}

} // namespace

JsonLineParser::JsonLineParser(StepBuilder& builder, TimeFormat& time, const ReadSettings& settings)
    : builder_(builder), time_(time),
      timeKey_(settings.timeColumn.empty() ? "t" : settings.timeColumn),
      knownNamesOnly_(settings.knownNamesOnly)
{
    for (auto& seen : seen_) {
        seen.resize(builder.names().size());
    }
}

std::variant<Step, text::Diagnostic> JsonLineParser::parse(std::string_view line,
                                                           std::size_t lineNumber)
{
    builder_.begin();
    if (const std::size_t zero = text::zeroByte(line); zero != std::string_view::npos)
        return text::errorAt(text::zeroByteMistake(), {}, {lineNumber, zero + 1}, line, 1);
    std::size_t taken = 0;
    const Handler::Reader reader{builder_, time_, timeKey_, knownNamesOnly_};
    Handler handler(reader, seen_, ++lines_, line, lineNumber, taken);
    Json::sax_parse(text::CountingIterator(line.data(), &taken),
                    text::CountingIterator(line.data() + line.size(), &taken), &handler);
    auto result = handler.result();
    builder_.begin();
    return result;
}

} // namespace telemetry
