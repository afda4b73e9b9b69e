// A muted trace: the results are those of a traced run, and nothing is written.
#include "tests/engine/EngineTest.h"

namespace {

class MutedTraceTest : public EngineTest {
protected:
    MutedTraceTest()
    {
        StateVar* mode = model.variable(k, "m", "Mode", {"ok", "bad!"});
        model.transition(mode->atomLinks->at(0), "Nominal", 0.75);
        model.transition(mode->atomLinks->at(1), "break", 0.25, "Fail");
        model.domainClauses(mode);
        props("in out low");
        law("!k.m=ok | !in | out");
        law("!k.m=bad | low");
        law("!out | !low");
        engine.rtInit();
        trace.take();
    }
    Candidates diagnose()
    {
        begin({{"k.m=ok", "true"},
               {"k.m=bad", "false"},
               {"in", "true"},
               {"out", "true"},
               {"low", "false"}});
        el("in")->lock = 0;
        Candidates found = add({{false, "out"}}, {.maxRank = 2.0});
        return found;
    }
    // All that a candidate holds, as text.
    static std::string described(const Candidates& found)
    {
        std::ostringstream out;
        for (const ItmsRes* candidate : found) {
            const State& state = *candidate->state;
            out << "rank " << state.wkstRank << '\n';
            for (const auto& [id, element] : *state.elements) {
                out << id << ' ' << element->label << ' ' << element->propagationNumber << ' '
                    << (element->support ? "supported" : "given") << '\n';
            }
            for (const auto& [id, probability] : *state.postProbs) {
                out << id << ' ' << probability << '\n';
            }
        }
        return out.str();
    }
};

TEST_F(MutedTraceTest, CandidatesAreTheSame)
{
    const std::string traced = described(diagnose());
    EXPECT_NE(traced, "");
    const MutedTrace muted;
    EXPECT_EQ(described(diagnose()), traced);
}

TEST_F(MutedTraceTest, TheWorkIsTheSame)
{
    diagnose();
    const SearchWork traced = DataManager::searchWork;
    EXPECT_GT(traced.records, 0U);
    const MutedTrace muted;
    diagnose();
    EXPECT_EQ(DataManager::searchWork.records, traced.records);
    EXPECT_EQ(DataManager::searchWork.flips, traced.flips);
    EXPECT_EQ(DataManager::searchWork.candidates, traced.candidates);
}

TEST_F(MutedTraceTest, NothingIsWritten)
{
    {
        const MutedTrace muted;
        diagnose();
        engine.rtInit();
        engine.checkForConflicts(nullptr, std::unique_ptr<State>(model.state({k})).get(),
                                 &trajectory, step);
    }
    EXPECT_EQ(trace.take(), "");
}

TEST_F(MutedTraceTest, ATraceThatIsTurnedOnAgainIsWhatItWas)
{
    diagnose();
    const std::string before = trace.take();
    EXPECT_NE(before, "");
    {
        const MutedTrace muted;
        diagnose();
    }
    diagnose();
    EXPECT_EQ(trace.take(), before);
}

TEST_F(MutedTraceTest, AnEntryIsFiledAllTheSame)
{
    const MutedTrace muted;
    const Candidates found = diagnose();
    ASSERT_EQ(DataManager::itmsBmkEntries.size(), 1U);
    EXPECT_EQ(DataManager::itmsBmkEntries[0].count, found.size());
}

TEST_F(MutedTraceTest, RetractionIsTheSame)
{
    begin({{"in", "true"}, {"out", "false"}});
    engine.setSupport(law("!in | out"), el("out"), state.get(), &trajectory, step);
    el("in")->setLabel("true");
    const MutedTrace muted;
    std::vector<TrajEl*> out;
    engine.deleteClause(el("in"), &out, state.get(), &trajectory, step);
    EXPECT_EQ(names(out), (std::vector<std::string>{"in", "out"}));
}

} // namespace
