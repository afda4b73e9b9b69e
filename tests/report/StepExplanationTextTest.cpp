#include "report/StepExplanation.h"

#include "tests/report/FollowedPlant.h"

#include <gmock/gmock.h>

namespace {

using report::Colours;
using report::StepExplanation;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string text(const StepExplanation& explanation)
{
    return explanationText(explanation, Colours(false));
}

TEST(StepExplanationText, IsReadFromTheCandidateToTheLaws)
{
    FollowedPlant plant(twoValves);
    plant.step({"valveA.request=open"}, {"valveA.inflow=positive", "valveB.outflow=zero"});
    plant.step({}, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    EXPECT_EQ(text(plant.explain()), R"(Step 2, t = 1: faulty

    100 %  valveB.position = stuckClosed since step 1
             instead of open: resolves conflict 1
           without valveA.position = closed, which conflict 2 rests on

Conflict 1, step 1, t = 0
  observed  valveB.outflow = zero (FT-2)
  expected  valveB.outflow = positive
  assumed   valveA.position = open, from closed by valveA.request = open
            valveB.position = open, as before
  read      valveA.inflow = positive (FT-1)
  law       plant.itms:10:5
            law position = open -> outflow = inflow
            gives valveA.outflow = positive
  law       plant.itms:20:5
            law valveA.outflow = valveB.inflow
            gives valveB.inflow = positive
  law       plant.itms:10:5
            law position = open -> outflow = inflow
            gives valveB.outflow = positive
  check     confirmed; nothing of this can be left out

Conflict 2, step 2, t = 1
  believed  valveA.position = closed since step 1
  observed  valveB.inflow = positive
  expected  valveB.inflow = zero
  assumed   valveA.position = closed, since step 1
  law       plant.itms:11:5
            law position in {closed, stuckClosed} -> outflow = zero
            gives valveA.outflow = zero
  law       plant.itms:20:5
            law valveA.outflow = valveB.inflow
            gives valveB.inflow = zero
  check     confirmed; nothing of this can be left out
)");
}

TEST(StepExplanationText, SaysThatNothingIsWrong)
{
    FollowedPlant plant(twoValves);
    plant.step({}, {"valveB.outflow=zero"});
    EXPECT_EQ(text(plant.explain()), "Step 1, t = 0: nominal\n"
                                     "\n"
                                     "    100 %  nothing is wrong\n"
                                     "\n"
                                     "No step so far contradicted what was believed before it.\n");
}

TEST(StepExplanationText, SaysWhatIsNotExplained)
{
    FollowedPlant plant(twoValves, {.maxFaults = 0});
    plant.step({"valveA.request=open"},
               {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    EXPECT_THAT(text(plant.explain()),
                HasSubstr("    100 %  does not explain valveB.outflow = zero\n"
                          "             conflict 1 stays\n"));
}

TEST(StepExplanationText, SaysThatStepsAreLeftOutAndWhatNoConflictTells)
{
    FollowedPlant plant(twoValves, {}, 1);
    plant.step({"valveA.request=open"}, {"valveA.inflow=positive", "valveB.outflow=zero"});
    plant.step({}, {"valveA.inflow=positive", "valveB.inflow=positive", "valveB.outflow=zero"});
    const std::string shown = text(plant.explain());
    EXPECT_THAT(shown, HasSubstr("             no listed conflict rests on it\n"));
    EXPECT_THAT(shown, HasSubstr("1 step with conflicts before these is left out; --all shows "
                                 "them too.\n"));
}

TEST(StepExplanationText, SaysWhatContradictsItself)
{
    StepExplanation explanation;
    explanation.report.step = 1;
    report::ExplainedConflict conflict;
    conflict.number = 1;
    conflict.step = 1;
    conflict.rank = 2;
    conflict.modes = {{"a.m", "on", "on", {}, {}}};
    report::AppliedLaw law;
    law.text = law.clause = "!a.m=on";
    conflict.laws = {law, law};
    conflict.check = monitor::ConflictCheck::confirmed;
    explanation.conflicts = {conflict};
    EXPECT_THAT(text(explanation),
                HasSubstr("  believed  nothing wrong (hypothesis 2 before the step)\n"
                          "  assumed   a.m = on, as before\n"
                          "  law       !a.m=on\n"
                          "  so        no values are possible\n"
                          "  check     confirmed\n"));
}

TEST(StepExplanationText, DoesNotHideWhatIsNotConfirmed)
{
    StepExplanation explanation;
    report::ExplainedConflict conflict;
    conflict.check = monitor::ConflictCheck::refuted;
    explanation.conflicts = {conflict};
    EXPECT_THAT(text(explanation), HasSubstr("check     NOT confirmed"));
    explanation.conflicts[0].check = monitor::ConflictCheck::unsettled;
    EXPECT_THAT(text(explanation), HasSubstr("check     not settled"));
}

// The laws leave x and y no values; what does not matter is open as well.
TEST(StepExplanationText, FindsReasonsThatOnlyTryingValuesShows)
{
    FollowedPlant plant(R"(component Free { cond a: on, off }
component Last {
    cond u: zero, one
    cond x: zero, one
    cond y: zero, one
    mode state { good initial broken fault }
    law state = good & u = one -> x = one | y = one
    law state = good & u = one -> x = one | y = zero
    law state = good & u = one -> x = zero | y = one
    law state = good & u = one -> x = zero | y = zero
    fault good -> broken : 0.1
}
system S {
    free[50]: Free
    last: Last
}
)");
    plant.step({}, {"last.u=one"});
    EXPECT_THAT(
        text(plant.explain()),
        AllOf(HasSubstr("last.state = broken since step 1\n             instead of good: resolves "
                        "conflict 1\n"),
              HasSubstr("  so        no values are possible for the variables that stay open\n"
                        "  check     confirmed; nothing of this can be left out\n")));
}

TEST(StepExplanationText, SaysWhenNoReasonIsFound)
{
    StepExplanation explanation;
    explanation.stepsOpen = {7};
    EXPECT_THAT(text(explanation),
                AllOf(HasSubstr("Step 7 contradicts what was believed before it; why was not found "
                                "within the\nbound on cases.\n"),
                      Not(HasSubstr("No step so far"))));
}

TEST(StepExplanationText, IsColouredOnlyWhenAsked)
{
    FollowedPlant plant(twoValves);
    plant.step({"valveA.request=open"}, {"valveA.inflow=positive", "valveB.outflow=zero"});
    EXPECT_THAT(text(plant.explain()), Not(HasSubstr("\x1b")));
    EXPECT_THAT(explanationText(plant.explain(), Colours(true)), HasSubstr("\x1b[1mConflict 1"));
}

} // namespace
