// Names are shown to people, and do not speak to their terminals.
#include "tests/app/Workshop.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

class ControlCharacters : public Workshop {};

const std::string escape = "\x1b";

} // namespace

TEST_F(ControlCharacters, OfFileNamesAreShown)
{
    EXPECT_EQ(shell("itms run pipe.itms $'log\\e[2J\\xc2\\x9b'"),
              "log\\x1b[2J\\u009b: cannot be read: No such file or directory\n[2]\n");
    EXPECT_EQ(shell("cp pipe.itms $'p\\e.itms'; itms check $'p\\e.itms' | cut -d: -f1"),
              "p\\x1b.itms\n");
}

TEST_F(ControlCharacters, OfNamesAreShownInAnswersForPeople)
{
    ASSERT_EQ(shell("itms export pipe.itms -o pipe.json;"
                    "sed -i -e 's/\"FT-2\"/\"F\\\\u001b[2J2\"/' -e "
                    "'s/\"pipe.itms\"/\"p\\\\u001b.itms\"/' pipe.json;"
                    "sed -i 's/FT-2/F\\\\u001b[2J2/' day.jsonl"),
              "");
    for (const std::string colour : {"always", "never"}) {
        const std::string told =
            shell("itms explain pipe.json day.jsonl --format text --color " + colour);
        EXPECT_THAT(told, HasSubstr("pipe.outflow = low (F\\x1b[2J2)"));
        EXPECT_THAT(told, HasSubstr("p\\x1b.itms:"));
        EXPECT_THAT(told, Not(HasSubstr(escape + "[2J")));
    }
}
