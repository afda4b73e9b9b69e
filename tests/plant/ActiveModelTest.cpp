#include "plant/ActiveModel.h"

#include "language/Reader.h"
#include "tests/support/TestModel.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using language::ReadResult;
using plant::ActiveModel;
using testing::ElementsAre;

constexpr const char* lampText = R"(
component Lamp {
    cond light: off, on
    cond power: no, yes
    mode state { good initial broken fault }
    law state = good and power = yes -> light = on
    fault good -> broken : 0.01
}
system Room { lamp: Lamp }
)";

class ActiveModelTest : public testing::Test {
protected:
    ActiveModelTest()
        : folder_(fs::temp_directory_path() / ("itms-active-" + std::to_string(::getpid())))
    {
        fs::create_directories(folder_);
        std::ofstream(folder_ / "room.itms") << lampText;
        read_ = language::readModel((folder_ / "room.itms").string());
    }
    ~ActiveModelTest() override
    {
        read_ = {};
        fs::remove_all(folder_);
    }

    void writeImplicates(const std::string& text) const
    {
        std::ofstream(folder_ / "room.pi") << text;
    }

    std::vector<std::string> reported(const std::vector<text::Diagnostic>& errors) const
    {
        std::vector<std::string> texts;
        for (const text::Diagnostic& error : errors) {
            texts.push_back(error.format().substr(folder_.string().size() + 1));
        }
        return texts;
    }

    MutedTrace muted_;
    fs::path folder_;
    ReadResult read_;
};

TEST_F(ActiveModelTest, IsSetUpWhenItsEngineIsAskedForWhereThatIsWanted)
{
    ActiveModel active(*read_.model, plant::SetUp::whenAsked);
    const Atom& atom = *read_.model->atoms().front();
    EXPECT_EQ(atom.comps, nullptr);
    active.engine();
    EXPECT_EQ(atom.comps->size(), 1U);
}

TEST_F(ActiveModelTest, IsSetUp)
{
    ActiveModel active(*read_.model);
    EXPECT_EQ(DataManager::active_comps->count("lamp"), 1U);
    EXPECT_EQ(DataManager::active_trans->size(), 1U);
    EXPECT_EQ(DataManager::findAtom("lamp.state=good")->initTrue, 1);
}

TEST_F(ActiveModelTest, HasNoImplicatesWithoutAFile)
{
    ActiveModel active(*read_.model);
    EXPECT_FALSE(active.implicates().found);
    EXPECT_EQ(active.engine().piTable, nullptr);
}

TEST_F(ActiveModelTest, ReadsTheImplicatesBesideTheModel)
{
    writeImplicates("lamp.light=on:lamp.state=good lamp.power=yes,lamp.light=on\n"
                    "lamp.light=off:lamp.state=broken\n");
    ActiveModel active(*read_.model);
    EXPECT_TRUE(active.implicates().found);
    EXPECT_EQ(active.implicates().heads, 2U);
    ASSERT_NE(active.engine().piTable, nullptr);
    const auto* sets = active.engine().piTable->getPIs(DataManager::findAtom("lamp.light=on"));
    ASSERT_NE(sets, nullptr);
    ASSERT_EQ(sets->size(), 2U);
    EXPECT_THAT(*sets->at(0), ElementsAre(DataManager::findAtom("lamp.state=good"),
                                          DataManager::findAtom("lamp.power=yes")));
}

TEST_F(ActiveModelTest, ReadsTheImplicatesOfTheNameThatAJsonModelHas)
{
    writeImplicates("lamp.light=on:lamp.state=good\n");
    const ReadResult json = language::readModelText(
        (folder_ / "another.json").string(),
        R"({"format": "itms-model", "v": 1, "name": ")" + (folder_ / "room").string() +
            R"(", "components": [{"name": "lamp", "variables": [
            {"name": "light", "kind": "cond", "values": [{"name": "off"}, {"name": "on"}]},
            {"name": "state", "kind": "cond", "values": [{"name": "broken"}, {"name": "good"}]}]}]})");
    ASSERT_TRUE(json.model);
    ActiveModel active(*json.model);
    EXPECT_TRUE(active.implicates().found);
    EXPECT_TRUE(active.implicates().errors.empty());
    EXPECT_EQ(active.implicates().heads, 1U);
}

TEST_F(ActiveModelTest, NamesAllUnknownAtomsOfAFileAndReadsNoneOfIt)
{
    writeImplicates("lamp.light=on:lamp.state=goood\n"
                    "lamp.light=off:lamp.state=broken  lamp.power=no\n");
    ActiveModel active(*read_.model);
    EXPECT_EQ(active.engine().piTable, nullptr);
    EXPECT_THAT(
        reported(active.implicates().errors),
        ElementsAre("room.pi:1:15: the model has no atom 'lamp.state=goood'\n"
                    "  lamp.light=on:lamp.state=goood\n"
                    "                ^~~~~~~~~~~~~~~~\n"
                    "  hint: did you mean 'lamp.state=good'?\n",
                    "room.pi:2:34: an atom is missing\n"
                    "  lamp.light=off:lamp.state=broken  lamp.power=no\n"
                    "                                   ^\n"
                    "  expected: COMPONENT.VARIABLE=VALUE, with one blank or comma between\n"));
}

TEST_F(ActiveModelTest, WarnsOfALineThatTheEngineDoesNotRead)
{
    writeImplicates("lamp.light=on:lamp.state=good");
    ActiveModel active(*read_.model);
    EXPECT_EQ(active.implicates().heads, 0U);
    EXPECT_THAT(reported(active.implicates().warnings),
                ElementsAre(testing::StartsWith("room.pi:1:1: the last line is not read")));
}

TEST_F(ActiveModelTest, ReplacesTheModelThatWasActive)
{
    ActiveModel first(*read_.model);
    const ReadResult other = language::readModelText(
        "other.itms", "component C { mode m { a initial b } }\nsystem S { c: C }\n");
    ActiveModel second(*other.model);
    EXPECT_EQ(DataManager::active_comps->size(), 1U);
    EXPECT_EQ(DataManager::active_comps->count("c"), 1U);
}

TEST_F(ActiveModelTest, IsActiveAgainWhenItsEngineIsAskedFor)
{
    ActiveModel first(*read_.model);
    const std::size_t atoms = DataManager::active_atoms->size();
    const ReadResult other = language::readModelText(
        "other.itms", "component C { mode m { a initial b } }\nsystem S { c: C }\n");
    {
        ActiveModel second(*other.model);
        first.engine();
        EXPECT_EQ(DataManager::active_comps->count("lamp"), 1U);
        EXPECT_EQ(DataManager::active_comps->count("c"), 0U);
        EXPECT_EQ(DataManager::active_atoms->size(), atoms);
        EXPECT_EQ(DataManager::active_trans->size(), 1U);
        second.engine();
        EXPECT_EQ(DataManager::active_comps->count("lamp"), 0U);
        EXPECT_EQ(DataManager::active_comps->count("c"), 1U);
    }
    first.engine();
    EXPECT_EQ(DataManager::active_comps->count("lamp"), 1U);
    EXPECT_EQ(DataManager::active_atoms->size(), atoms);
}

TEST_F(ActiveModelTest, LeavesTheRegistryEmptyWhenItIsGone)
{
    DataManager::reset();
    {
        const ActiveModel active(*read_.model);
        EXPECT_FALSE(DataManager::active_comps->empty());
    }
    EXPECT_TRUE(DataManager::active_comps->empty());
}

} // namespace
