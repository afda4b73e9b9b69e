#include "text/Digest.h"

#include <gtest/gtest.h>

namespace {

std::string digestOf(std::string_view text)
{
    text::Digest digest;
    digest.add(text);
    return digest.hex();
}

TEST(Digest, IsTheSameOnEveryMachine)
{
    EXPECT_EQ(digestOf(""), "cbf29ce484222325");
    EXPECT_EQ(digestOf("a"), "af63dc4c8601ec8c");
    EXPECT_EQ(digestOf("foobar"), "85944171f73967e8");
}

TEST(Digest, DoesNotDependOnThePieces)
{
    text::Digest digest;
    for (const char* piece : {"fo", "", "ob", "ar"}) {
        digest.add(piece);
    }
    EXPECT_EQ(digest.hex(), digestOf("foobar"));
}

TEST(Digest, DependsOnEveryByte)
{
    EXPECT_NE(digestOf("foobar"), digestOf("foobas"));
    EXPECT_NE(digestOf("foobar"), digestOf("foobar\n"));
    EXPECT_NE(digestOf(std::string(1, '\0')), digestOf(""));
    EXPECT_NE(digestOf("\xff"), digestOf("\x7f"));
}

} // namespace
