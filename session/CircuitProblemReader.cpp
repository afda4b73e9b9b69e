// The JSON is read event by event, so that a signal given twice is seen and every mistake has its place.
#include "session/CircuitProblemReader.h"

#include "text/JsonText.h"
#include "text/NearestName.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace session {

namespace {

using Json = nlohmann::json;

constexpr const char* wholeProblem =
    R"({"id": "p1", "inputs": {"a": 0, ...}, "observed": {"y": 1, ...}})";

// Takes the parser's events of one line.
class Handler : public nlohmann::json_sax<Json> {
public:
    Handler(std::string_view line, const netlist::Circuit& circuit, const std::size_t& taken)
        : line_(line), taken_(taken), builder_(circuit)
    {
    }

    bool null() override { return value("null"); }
    bool boolean(bool given) override { return value(given ? "true" : "false"); }
    bool number_integer(number_integer_t given) override { return value(std::to_string(given)); }
    bool number_unsigned(number_unsigned_t given) override
    {
        if (atSignal() && given <= 1) return signal(given == 1);
        return value(std::to_string(given));
    }
    bool number_float(number_float_t /*value*/, const string_t& text) override
    {
        return value(text);
    }
    bool string(string_t& text) override
    {
        if (depth_ == 1 && section_ == Section::id) {
            id_ = text;
            return true;
        }
        return value(fmt::format("the text {}", text::quoted(text)));
    }
    bool binary(binary_t& /*value*/) override { return value("binary data"); }
    bool start_array(std::size_t /*size*/) override { return open("an array"); }
    bool end_array() override { return close(); }
    bool start_object(std::size_t /*size*/) override
    {
        const bool wanted =
            depth_ == 0 ||
            (depth_ == 1 && (section_ == Section::inputs || section_ == Section::observed));
        if (!wanted) return open("an object");
        ++depth_;
        return true;
    }
    bool end_object() override { return close(); }
    bool key(string_t& name) override;
    bool parse_error(std::size_t position, const std::string& lastToken,
                     const nlohmann::detail::exception& error) override;

    std::variant<CircuitProblem, text::Diagnostic> result();

private:
    enum class Section { none, id, inputs, observed, other };

    bool atSignal() const
    {
        return depth_ == 2 && (section_ == Section::inputs || section_ == Section::observed);
    }
    bool signal(bool given);
    bool value(const std::string& found);
    bool open(const std::string& found);
    bool close()
    {
        --depth_;
        return true;
    }
    bool refuse(std::size_t offset, std::size_t length, const text::Message& what);
    bool refuseKey(const text::Message& what) { return refuse(keyOffset_, keyLength_, what); }
    bool require(Section section, const char* name, Side side);

    std::string_view line_;
    const std::size_t& taken_;
    CircuitProblemBuilder builder_;
    int depth_ = 0;
    Section section_ = Section::none;
    std::optional<std::string> id_;
    std::string signal_;
    std::size_t keyOffset_ = 0;
    std::size_t keyLength_ = 0;
    std::vector<std::string> otherKeys_;
    std::size_t sectionOffset_[5] = {}; // of each section's key, plus 1; 0: not there
    std::optional<text::Diagnostic> error_;
};

bool Handler::key(string_t& name)
{
    if (depth_ > 2 || (depth_ == 2 && !atSignal())) return true;
    const text::Extent key = text::textBefore(line_, taken_);
    keyOffset_ = key.offset;
    keyLength_ = key.length;
    if (depth_ == 2) {
        signal_ = name;
        return true;
    }
    section_ = name == "id"         ? Section::id
               : name == "inputs"   ? Section::inputs
               : name == "observed" ? Section::observed
                                    : Section::other;
    if (section_ == Section::other) {
        otherKeys_.push_back(name);
        return true;
    }
    std::size_t& seen = sectionOffset_[static_cast<std::size_t>(section_)];
    if (seen != 0) {
        return refuseKey(
            {fmt::format("'{}' stands twice in the problem", name), "each key once", ""});
    }
    seen = keyOffset_ + 1;
    return true;
}

bool Handler::signal(bool given)
{
    const Side side = section_ == Section::inputs ? Side::input : Side::output;
    const auto mistake = builder_.add(side, signal_, given);
    return !mistake || refuseKey(*mistake);
}

bool Handler::value(const std::string& found)
{
    if (depth_ == 0) {
        return refuse(0, line_.size(),
                      {"found " + found + " where a problem begins", wholeProblem, ""});
    }
    if (atSignal()) {
        return refuseKey(
            {fmt::format("the value of {} is {}", text::quoted(signal_), found), "0 or 1",
             section_ == Section::observed ? "an output that was not observed is left out" : ""});
    }
    if (depth_ > 1 || section_ == Section::other) return true;
    if (section_ == Section::id) {
        return refuseKey({"the value of 'id' is " + found, "a text", "write it in quotes"});
    }
    return refuseKey({fmt::format("the value of '{}' is {}",
                                  section_ == Section::inputs ? "inputs" : "observed", found),
                      R"(an object of signals and their values, such as {"a": 0, "b": 1})", ""});
}

// Passes over an array or object where that is allowed, else refuses it.
bool Handler::open(const std::string& found)
{
    const bool other = depth_ > 0 && (section_ == Section::other || (depth_ > 1 && !atSignal()));
    if (!other) return value(found);
    ++depth_;
    return true;
}

bool Handler::parse_error(std::size_t position, const std::string& lastToken,
                          const nlohmann::detail::exception& error)
{
    constexpr int outOfRange = 406;
    if (error.id == outOfRange) {
        const std::size_t end = std::min(position, line_.size());
        const std::size_t length = std::min(end, lastToken.size());
        return refuse(end - length, length,
                      {"this number is too large", atSignal() ? "0 or 1" : "a finite number", ""});
    }
    const text::JsonMistake mistake = text::jsonMistake(error.what());
    return refuse(std::min(position == 0 ? 0 : position - 1, line_.size()), 1,
                  {fmt::format("this is not JSON: {}",
                               mistake.found.empty() ? "it cannot be read" : mistake.found),
                   mistake.expected, fmt::format("a problem is one line: {}", wholeProblem)});
}

bool Handler::refuse(std::size_t offset, std::size_t length, const text::Message& what)
{
    error_ = text::errorAt(what, {}, {0, offset + 1}, line_, length);
    return false;
}

// Whether the section is there with everything that it needs; an error otherwise.
bool Handler::require(Section section, const char* name, Side side)
{
    const std::size_t offset = sectionOffset_[static_cast<std::size_t>(section)];
    if (offset == 0) {
        const std::vector<std::string_view> known(otherKeys_.begin(), otherKeys_.end());
        const std::string nearest = text::nearestName(name, known);
        return refuse(
            0, 1,
            {fmt::format("the problem has no '{}'", name), wholeProblem,
             nearest.empty() ? "" : fmt::format("is '{}' meant to be '{}'?", nearest, name)});
    }
    const auto mistake = builder_.missing(side);
    return !mistake || refuse(offset - 1, std::string_view(name).size() + 2, *mistake);
}

std::variant<CircuitProblem, text::Diagnostic> Handler::result()
{
    if (!error_ && require(Section::inputs, "inputs", Side::input)) {
        require(Section::observed, "observed", Side::output);
    }
    if (error_) return std::move(*error_);
    CircuitProblem problem = builder_.finish();
    problem.id = std::move(id_);
    return problem;
}

} // namespace

std::variant<CircuitProblem, text::Diagnostic> readProblem(std::string_view line,
                                                           const netlist::Circuit& circuit)
{
    if (const std::size_t zero = text::zeroByte(line); zero != std::string_view::npos)
        return text::errorAt(text::zeroByteMistake(), {}, {0, zero + 1}, line, 1);
    std::size_t taken = 0;
    Handler handler(line, circuit, taken);
    Json::sax_parse(text::CountingIterator(line.data(), &taken),
                    text::CountingIterator(line.data() + line.size(), &taken), &handler);
    return handler.result();
}

} // namespace session
