#include "tests/engine/Golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::string fileOf(const std::string& name)
{
    return std::string(ITMS_ROOT) + "/tests/engine/golden/" + name + ".trace";
}

bool regenerating()
{
    const char* wish = std::getenv("ITMS_REGENERATE");
    return wish && std::string(wish) == "1";
}

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string withoutAddresses(std::string text)
{
    const std::string placeholder = "<address>";
    for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at)) {
        const std::size_t end = text.find_first_not_of("0123456789abcdef", at + 2);
        text.replace(at, end == std::string::npos ? end : end - at, placeholder);
        at += placeholder.size();
    }
    return text;
}

} // namespace

std::string readable(const std::string& trace)
{
    const std::string local = replaced(trace, std::string(ITMS_ROOT) + "/", "");
    return replaced(withoutAddresses(local), "-nan", "nan");
}

void expectGolden(const std::string& name, const std::string& trace)
{
    const std::string actual = readable(trace);
    const std::string path = fileOf(name);
    if (regenerating()) {
        std::ofstream out(path);
        out << actual;
        ASSERT_TRUE(out.flush()) << "cannot write " << path;
        return;
    }
    std::ifstream in(path);
    ASSERT_TRUE(in) << "cannot read " << path;
    std::ostringstream text;
    text << in.rdbuf();
    const std::string expected = text.str();
    std::istringstream wanted(expected);
    std::istringstream got(actual);
    std::string wantedLine;
    std::string gotLine;
    for (int number = 1;; ++number) {
        const bool more = static_cast<bool>(std::getline(wanted, wantedLine));
        const bool others = static_cast<bool>(std::getline(got, gotLine));
        if (!more && !others) {
            break;
        }
        ASSERT_EQ(others ? gotLine : "(no further line)", more ? wantedLine : "(no further line)")
            << path << ":" << number;
    }
    EXPECT_EQ(actual, expected) << path;
}
