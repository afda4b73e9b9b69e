// Whole steps of three small models, from set-up to candidates, against the traces in golden/.
//
// To write the files anew: ITMS_REGENERATE=1 itms_tests_engine --gtest_filter='GoldenTrace*'.
#include "tests/engine/EngineTest.h"
#include "tests/engine/Golden.h"

namespace {

class GoldenTraceTest : public EngineTest {
protected:
    // Beginnings of what was printed stand out by lines of their own.
    static void heading(const std::string& text) { std::cout << "== " << text << " ==\n"; }
    void setUp()
    {
        heading("set-up");
        engine.rtInit();
    }
    // Mode variable with a transition to each value: the first nominal, the others faults.
    StateVar* unit(const std::string& name, std::initializer_list<std::string_view> modes)
    {
        Comp* comp = model.comp(name);
        StateVar* mode = model.variable(comp, "mode", "Mode", modes);
        for (Atom* value : *mode->atomLinks) {
            const bool fault = value->fail;
            model.transition(value, fault ? "to " + value->value : "Nominal", fault ? 0.05 : 0.9,
                             fault ? "Fail" : "");
        }
        model.domainClauses(mode);
        return mode;
    }
    void condition(const std::string& comp, const std::string& name)
    {
        model.variable((*DataManager::active_comps)[comp.c_str()], name, "Cond", {"1"});
    }
    void predict(const Labels& labels, int lock)
    {
        for (const auto& [id, label] : labels) {
            trajectory.predict(step, atom(id), label, lock);
        }
    }
    // A state that starts with the one component; the search instantiates the others as predicted.
    void beginIn(const std::string& comp)
    {
        state = std::make_unique<State>();
        trajectory.addComp((*DataManager::active_comps)[comp.c_str()], state.get(), step, true,
                           false);
    }
    // The labels of each candidate's decisions, after the trace.
    static void showDecisions(const Candidates& found)
    {
        for (std::size_t i = 0; i < found.size(); ++i) {
            heading("candidate " + std::to_string(i + 1));
            std::map<std::string, std::string> decisions;
            for (const auto& [id, element] : *found[i]->already_changed) {
                decisions[id] = element->label;
            }
            for (const auto& [id, label] : decisions) {
                std::cout << id << " : " << label << '\n';
            }
        }
    }
};

// in -> first -> middle -> second -> out, each inverter fine or broken; out is observed to be wrong. A lamp shows
// the middle, and is retracted and propagated anew where that is flipped.
TEST_F(GoldenTraceTest, TwoInverters)
{
    unit("first", {"ok", "broken!"});
    unit("second", {"ok", "broken!"});
    condition("first", "in");
    condition("second", "middle");
    condition("second", "out");
    condition("second", "lamp");
    law("!first.mode=ok | !first.in=1 | !second.middle=1");
    law("!first.mode=ok | first.in=1 | second.middle=1");
    law("!second.mode=ok | !second.middle=1 | !second.out=1");
    law("!second.mode=ok | second.middle=1 | second.out=1");
    law("second.middle=1 | !second.lamp=1");
    law("!second.middle=1 | second.lamp=1");
    setUp();
    predict({{"first.mode=ok", "true"},
             {"first.mode=broken", "false"},
             {"second.mode=ok", "true"},
             {"second.mode=broken", "false"},
             {"second.middle=1", "false"},
             {"second.lamp=1", "false"},
             {"second.out=1", "true"}},
            2);
    predict({{"first.in=1", "true"}}, 0);
    beginIn("second");
    el("second.middle=1")->dependents->push_back(el("second.lamp=1"));
    heading("the output is low although the input is high");
    showDecisions(add({{false, "second.out=1"}}, {.maxRank = 1.0}));
    expectGolden("inverters", trace.take());
}

// A valve that was told to open, or is open by an earlier step, and shows no flow. With type rules the mode that
// its nominal transition has just produced stays, so that nothing explains the first observation.
class ValveTraceTest : public GoldenTraceTest {
protected:
    void makeValve()
    {
        Comp* valve = model.comp("valve");
        StateVar* command = model.variable(valve, "cmd", "Command", {"none", "open"});
        StateVar* mode = model.variable(valve, "mode", "Mode", {"closed", "open", "stuck!"});
        condition("valve", "flow");
        opening = model.transition(mode->atomLinks->at(1), "Nominal", 0.98);
        model.guard(opening, {{false, command->atomLinks->at(1)}});
        Transition* sticking = model.transition(mode->atomLinks->at(2), "stick", 0.02, "Fail");
        model.guard(sticking, {{false, mode->atomLinks->at(0)}});
        model.domainClauses(mode);
        law("!valve.mode=open | valve.flow=1");
        law("!valve.mode=closed | !valve.flow=1");
        law("!valve.mode=stuck | !valve.flow=1");
    }
    void predictOpen(int lockOfClosed)
    {
        predict({{"valve.cmd=open", "true"}}, 3);
        predict({{"valve.cmd=none", "false"}}, 4);
        predict(
            {{"valve.mode=open", "true"}, {"valve.mode=stuck", "false"}, {"valve.flow=1", "true"}},
            2);
        predict({{"valve.mode=closed", "false"}}, lockOfClosed);
    }

    Transition* opening = nullptr;
};

TEST_F(ValveTraceTest, ValveWithTypeRules)
{
    makeValve();
    setUp();
    predictOpen(4);
    beginIn("valve");
    el("valve.mode=open")->transition = opening;
    state->computeProbas = true;
    heading("no flow, and the valve has just opened");
    showDecisions(add({{false, "valve.flow=1"}}, {.typeRules = true, .maxRank = 1.0}));
    beginIn("valve");
    state->computeProbas = true;
    heading("no flow, and the valve was open before");
    showDecisions(add({{false, "valve.flow=1"}}, {.typeRules = true, .maxRank = 1.0}));
    expectGolden("valve", trace.take());
}

// A tank whose alarm says that it is low. What makes it low is compiled: a leaking pump, an open drain (which is
// out of reach at this step), or a stuck valve along with cold water.
TEST_F(GoldenTraceTest, PrimeImplicates)
{
    model.comp("tank");
    condition("tank", "alarm");
    condition("tank", "low");
    condition("tank", "cold");
    unit("pump", {"ok", "leak!"});
    unit("drain", {"shut", "open!"});
    unit("valve", {"ok", "stuck!"});
    law("!tank.alarm=1 | tank.low=1");
    law("tank.cold=1 | !valve.mode=stuck");
    setUp();
    DataManager::model_name = std::string(ITMS_ROOT) + "/tests/engine/golden/implicates";
    ASSERT_EQ(engine.readPI(), 1);
    for (const auto& [unitName, mode] : std::vector<std::pair<std::string, std::string>>{
             {"pump", "leak"}, {"drain", "open"}, {"valve", "stuck"}}) {
        predict({{unitName + (unitName == "drain" ? ".mode=shut" : ".mode=ok"), "true"}}, 2);
        predict({{unitName + ".mode=" + mode, "false"}}, unitName == "drain" ? 4 : 2);
    }
    predict({{"tank.alarm=1", "false"}, {"tank.low=1", "false"}, {"tank.cold=1", "false"}}, 2);
    beginIn("tank");
    trajectory.addComp((*DataManager::active_comps)["pump"], state.get(), step, true, false);
    heading("the alarm is on");
    showDecisions(add({{true, "tank.alarm=1"}}, {.maxRank = 1.0}));
    expectGolden("implicates", trace.take());
}

TEST(ReadableTraceTest, AddressesFoldersAndSignsOfWhatIsNoNumberAreReplaced)
{
    EXPECT_EQ(readable("support: 0x7f00ab12\nsupport: 0\n"), "support: <address>\nsupport: 0\n");
    EXPECT_EQ(readable(std::string(ITMS_ROOT) + "/tests/x.pi found"), "tests/x.pi found");
    EXPECT_EQ(readable("-nan -- a\nnan -- b\n-1 -- c\n"), "nan -- a\nnan -- b\n-1 -- c\n");
}

} // namespace
