// Several files as one stream, and files that are packed.
#include "telemetry/StepFiles.h"
#include "tests/telemetry/Telemetry.h"

#include <fstream>
#include <gmock/gmock.h>
#include <zlib.h>
#include <zstd.h>

namespace {

using telemetry::StepFiles;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> rest(StepFiles& files)
{
    std::vector<std::string> all;
    while (true) {
        auto next = files.next();
        if (const auto* step = std::get_if<telemetry::Step>(&next)) {
            all.push_back(shown(*step));
        } else if (const auto* mistake = std::get_if<telemetry::Mistake>(&next)) {
            all.push_back(mistake->error.message);
        } else {
            return all;
        }
    }
}

const std::string lateFile = "t,FT-2,XV-1\n3,,1\n4,2,\n";
const std::string earlyFile = "t,FT-2,junk\n0,0.5,7\n1,0.5,7\n";
const std::string middleFile = "{\"t\": 2, \"observations\": {\"FT-1\": 2}}\n";

TEST(StepFiles, AreReadInTheOrderOfTheirTimes)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile late(lateFile);
    const TemporaryFile early(earlyFile);
    const TemporaryFile middle(middleFile);
    const TemporaryFile empty("t,FT-1\n");
    StepFiles files({late.path(), empty.path(), early.path(), middle.path()}, *plant.model,
                    plant.bindings);
    EXPECT_THAT(rest(files),
                ElementsAre(StartsWith("1 t=0 "), StartsWith("2 t=1 "), StartsWith("3 t=2 "),
                            HasSubstr("saw [branch/valve.flow=zero held]"), StartsWith("5 t=4 ")));
    const auto notes = files.takeNotes();
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes.front().file, early.path());
    EXPECT_EQ(files.doneShare(), 1.0);
}

TEST(StepFiles, ThatOverlapAreMistakes)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile one("t,FT-1\n0,1\n5,1\n");
    const TemporaryFile two("t,FT-1\n4,1\n6,1\n");
    StepFiles files({one.path(), two.path()}, *plant.model, plant.bindings, skipping);
    EXPECT_THAT(rest(files), ElementsAre(StartsWith("1 t=0"), StartsWith("2 t=5"), "the time is 4",
                                         StartsWith("3 t=6")));
}

TEST(StepFiles, GoOnFromTheirState)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile late(lateFile);
    const TemporaryFile early(earlyFile);
    const TemporaryFile middle(middleFile);
    const std::vector<std::string> paths{late.path(), early.path(), middle.path()};
    StepFiles whole(paths, *plant.model, plant.bindings);
    const std::vector<std::string> all = rest(whole);
    ASSERT_EQ(all.size(), 5U);
    for (std::size_t cut = 0; cut <= all.size(); ++cut) {
        StepFiles first(paths, *plant.model, plant.bindings);
        for (std::size_t i = 0; i < cut; ++i) {
            first.next();
        }
        StepFiles second(paths, *plant.model, plant.bindings);
        second.restore(first.state());
        EXPECT_EQ(rest(second), std::vector<std::string>(
                                    all.begin() + static_cast<std::ptrdiff_t>(cut), all.end()))
            << cut;
    }
    telemetry::ReaderState state;
    state.files = 3;
    StepFiles other(paths, *plant.model, plant.bindings);
    EXPECT_THROW(other.restore(state), std::invalid_argument);
}

std::string gzipped(const std::string& text)
{
    const TemporaryFile file("");
    gzFile out = gzopen(file.path().c_str(), "wb");
    gzwrite(out, text.data(), static_cast<unsigned>(text.size()));
    gzclose(out);
    std::ifstream in(file.path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string zstdPacked(const std::string& text)
{
    std::string packed(ZSTD_compressBound(text.size()), '\0');
    packed.resize(ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), 3));
    return packed;
}

std::string longLog()
{
    std::string text = "t,FT-1\n";
    for (int i = 0; i < 20000; ++i) {
        text += fmt::format("{},{}\n", i, (i * 7919) % 1000 / 100.0);
    }
    return text;
}

using Pack = std::string (*)(const std::string&);

class PackedFiles : public testing::TestWithParam<Pack> {};

TEST_P(PackedFiles, AreReadAsWhatIsInThem)
{
    const std::string text = longLog();
    EXPECT_EQ(readText(GetParam()(text)), readText(text));
}

TEST_P(PackedFiles, OneAfterTheOtherAreOneFile)
{
    const std::string text = longLog();
    const std::size_t half = text.find('\n', text.size() / 2) + 1;
    EXPECT_EQ(readText(GetParam()(text.substr(0, half)) + GetParam()(text.substr(half))),
              readText(text));
}

TEST_P(PackedFiles, ThatAreCutShortAreFailures)
{
    const std::string packed = GetParam()(longLog());
    for (const std::size_t length : {packed.size() - 1, packed.size() / 2, std::size_t{12}}) {
        try {
            readText(packed.substr(0, length));
            ADD_FAILURE() << length;
        } catch (const telemetry::ReadFailure& failure) {
            EXPECT_THAT(failure.what(), HasSubstr("cannot be unpacked: it is cut short"));
        }
    }
}

TEST_P(PackedFiles, ThatAreDamagedAreFailures)
{
    std::string packed = GetParam()(longLog());
    for (std::size_t i = packed.size() / 2; i < packed.size() / 2 + 40; ++i) {
        packed[i] = static_cast<char>(~packed[i]);
    }
    // Its checksum tells at the end at the latest.
    EXPECT_THROW(readText(packed, skipping), telemetry::ReadFailure);
}

TEST_P(PackedFiles, KnowHowMuchWasRead)
{
    const language::ReadResult plant = readPlant();
    const TemporaryFile file(GetParam()(longLog()));
    telemetry::StepReader reader(file.path(), *plant.model, plant.bindings);
    double before = 0;
    while (!std::holds_alternative<telemetry::End>(reader.next())) {
        EXPECT_GE(reader.doneShare(), before);
        before = reader.doneShare();
    }
    EXPECT_EQ(reader.doneShare(), 1.0);
}

INSTANTIATE_TEST_SUITE_P(, PackedFiles, testing::Values(gzipped, zstdPacked),
                         [](const auto& given) { return given.param == gzipped ? "Gzip" : "Zstd"; });

} // namespace
