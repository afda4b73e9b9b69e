// The objects of a circuit's model.
#include "netlist/CircuitModel.h"
#include "tests/netlist/Circuits.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

namespace {

using netlist::Circuit;
using netlist::CircuitModel;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* twoGates = "INPUT(a)\nINPUT(b)\nOUTPUT(y)\nn = nand(a, b)\ny = not(n)\n";

// A clause's literals in the order of its map, in which the order of insertion shows.
template <typename Literals, typename NameOf>
std::string inOrder(const Literals& literals, NameOf nameOf)
{
    std::string text;
    for (const auto& [negated, atom] : literals) {
        text += (text.empty() ? "" : " | ") + std::string(negated ? "!" : "") + nameOf(atom);
    }
    return text;
}

// The clauses of which the literals are inserted as they are written here: "f | !a=0 | y=1". `f` is y.mode=faulty,
// `a=0` is a.out=0.
std::vector<std::string> inserted(const std::vector<std::string>& clauses)
{
    std::vector<std::string> result;
    for (const std::string& clause : clauses) {
        std::multimap<bool, std::string, eqbool> literals;
        std::istringstream words(clause);
        for (std::string word; words >> word;) {
            if (word == "|") continue;
            const bool negated = word.front() == '!';
            word.erase(0, negated ? 1 : 0);
            const std::size_t equals = word.find('=');
            std::string id = word.substr(0, equals);
            if (id == "f") id = "y.mode=faulty";
            if (equals != std::string::npos)
                id += (id.find('.') == std::string::npos ? ".out" : "") + word.substr(equals);
            literals.insert({negated, id});
        }
        result.push_back(inOrder(literals, [](const std::string& id) { return id; }));
    }
    return result;
}

// The laws of a gate `y` over a, b, c, d, e.
std::vector<std::string> lawsOf(const std::string& gate)
{
    const CircuitModel built = netlist::buildModel(circuitOf(
        "INPUT(a)\nINPUT(b)\nINPUT(c)\nINPUT(d)\nINPUT(e)\nOUTPUT(y)\ny = " + gate + "\n"));
    built.model->makeEngineObjects();
    std::vector<std::string> laws;
    for (const Clause* clause : built.model->laws()) {
        laws.push_back(inOrder(*clause->literals, [](const Atom* atom) { return atom->id; }));
    }
    return laws;
}

std::vector<std::string> names(const std::vector<Comp*>& components)
{
    std::vector<std::string> result;
    for (const Comp* component : components) {
        result.push_back(component->name);
    }
    return result;
}

TEST(CircuitModel, HasAComponentForEachInputAndThenForEachGate)
{
    const Circuit circuit = circuitOf(twoGates);
    const CircuitModel built = netlist::buildModel(circuit);
    built.model->makeEngineObjects();
    std::vector<Comp*> components;
    for (const auto& component : built.model->components()) {
        components.push_back(component.get());
    }
    EXPECT_EQ(built.model->name(), "test");
    EXPECT_THAT(names(components), ElementsAre("a", "b", "n", "y"));
}

TEST(CircuitModel, GivesAnInputTheConditionOutAlone)
{
    const CircuitModel built = netlist::buildModel(circuitOf(twoGates));
    built.model->makeEngineObjects();
    const Comp& input = *built.model->components()[0];
    ASSERT_EQ(input.stateVars->size(), 1U);
    const StateVar& out = *input.stateVars->front();
    EXPECT_EQ(out.type, "Cond");
    EXPECT_EQ(out.initial, nullptr);
    ASSERT_EQ(out.atomLinks->size(), 2U);
    EXPECT_EQ((*out.atomLinks)[0]->id, "a.out=0");
    EXPECT_EQ((*out.atomLinks)[1]->id, "a.out=1");
    EXPECT_THAT(*input.transitions, IsEmpty());
}

TEST(CircuitModel, GivesAGateAModeThatIsOkAtFirstAndMayBeFaulty)
{
    const CircuitModel built = netlist::buildModel(circuitOf(twoGates));
    built.model->makeEngineObjects();
    const Comp& gate = *built.model->components()[2];
    ASSERT_EQ(gate.stateVars->size(), 2U);
    const StateVar& mode = *(*gate.stateVars)[0];
    EXPECT_EQ(mode.type, "Mode");
    EXPECT_EQ((*mode.atomLinks)[0]->id, "n.mode=ok");
    EXPECT_FALSE((*mode.atomLinks)[0]->fail);
    EXPECT_EQ((*mode.atomLinks)[1]->id, "n.mode=faulty");
    EXPECT_TRUE((*mode.atomLinks)[1]->fail);
    EXPECT_EQ(mode.initial, (*mode.atomLinks)[0]);
    EXPECT_EQ((*gate.stateVars)[1]->name, "out");
    EXPECT_EQ((*gate.stateVars)[1]->initial, nullptr);
}

TEST(CircuitModel, GivesAGateOneFaultTransition)
{
    const CircuitModel built = netlist::buildModel(circuitOf(twoGates), {.faultProbability = 0.25});
    built.model->makeEngineObjects();
    for (std::size_t gate = 0; gate < 2; ++gate) {
        const Comp& component = *built.ok[gate]->getVarComp();
        ASSERT_EQ(component.transitions->size(), 1U);
        const Transition& fault = *component.transitions->front();
        EXPECT_EQ(fault.name, "faulty");
        EXPECT_EQ(fault.type, "Fail");
        EXPECT_EQ(fault.proba, 0.25);
        EXPECT_EQ(fault.atom, built.faulty[gate]);
        EXPECT_THAT(*built.ok[gate]->outTransitions, ElementsAre(&fault));
    }
}

TEST(CircuitModel, TakesOneInAHundredAsFaultProbabilityUnlessToldOtherwise)
{
    const CircuitModel built = netlist::buildModel(circuitOf(twoGates));
    built.model->makeEngineObjects();
    EXPECT_EQ(built.model->components()[2]->transitions->front()->proba, 0.01);
}

TEST(CircuitModel, ImportsTheComponentsOfAGatesInputs)
{
    const CircuitModel built = netlist::buildModel(circuitOf(twoGates));
    built.model->makeEngineObjects();
    EXPECT_THAT(names(*built.model->components()[0]->importedComps), IsEmpty());
    EXPECT_THAT(names(*built.model->components()[2]->importedComps), ElementsAre("a", "b"));
    EXPECT_THAT(names(*built.model->components()[3]->importedComps), ElementsAre("n"));
}

TEST(CircuitModel, FindsAtomsBySignalAndBit)
{
    const Circuit circuit = circuitOf(twoGates);
    const CircuitModel built = netlist::buildModel(circuit);
    built.model->makeEngineObjects();
    EXPECT_EQ(netlist::outAtom(circuit, built, "n", false)->id, "n.out=0");
    EXPECT_EQ(netlist::outAtom(circuit, built, "a", true)->id, "a.out=1");
    EXPECT_EQ(netlist::outAtom(circuit, built, "N", true), nullptr);
    EXPECT_EQ(built.out[*circuit.signal("y")][1]->id, "y.out=1");
    EXPECT_EQ(built.faulty[1]->id, "y.mode=faulty");
}

TEST(CircuitModel, WritesEachLawWithTheFaultTheInputsAndTheOutputInThisOrder)
{
    EXPECT_EQ(lawsOf("nand(a, b)"),
              inserted({"f | !a=0 | y=1", "f | !b=0 | y=1", "f | !a=1 | !b=1 | y=0"}));
    EXPECT_EQ(lawsOf("nand(b, a)"),
              inserted({"f | !b=0 | y=1", "f | !a=0 | y=1", "f | !b=1 | !a=1 | y=0"}));
    EXPECT_EQ(lawsOf("and(a, b)"),
              inserted({"f | !a=0 | y=0", "f | !b=0 | y=0", "f | !a=1 | !b=1 | y=1"}));
    EXPECT_EQ(lawsOf("or(a, b)"),
              inserted({"f | !a=1 | y=1", "f | !b=1 | y=1", "f | !a=0 | !b=0 | y=0"}));
    EXPECT_EQ(lawsOf("nor(a, b)"),
              inserted({"f | !a=1 | y=0", "f | !b=1 | y=0", "f | !a=0 | !b=0 | y=1"}));
    EXPECT_EQ(lawsOf("not(a)"), inserted({"f | !a=0 | y=1", "f | !a=1 | y=0"}));
    EXPECT_EQ(lawsOf("buf(a)"), inserted({"f | !a=0 | y=0", "f | !a=1 | y=1"}));
}

TEST(CircuitModel, WritesALawForEachInputVectorOfAParity)
{
    EXPECT_EQ(lawsOf("xor(a, b)"), inserted({"f | !a=0 | !b=0 | y=0", "f | !a=1 | !b=0 | y=1",
                                             "f | !a=0 | !b=1 | y=1", "f | !a=1 | !b=1 | y=0"}));
    EXPECT_EQ(lawsOf("xnor(a, b)"), inserted({"f | !a=0 | !b=0 | y=1", "f | !a=1 | !b=0 | y=0",
                                              "f | !a=0 | !b=1 | y=0", "f | !a=1 | !b=1 | y=1"}));
    EXPECT_EQ(lawsOf("xor(a, b, c, d)").size(), 16U);
}

TEST(CircuitModel, TakesOneInputAsACopyOrAnInversion)
{
    for (const std::string kind : {"and", "or", "xor"}) {
        EXPECT_EQ(lawsOf(kind + "(a)").size(), 2U);
    }
    EXPECT_EQ(lawsOf("xor(a)"), lawsOf("buf(a)"));
    EXPECT_EQ(lawsOf("xnor(a)"), lawsOf("not(a)"));
    EXPECT_EQ(lawsOf("and(a)"), lawsOf("buf(a)"));
    EXPECT_EQ(lawsOf("nand(a)"), lawsOf("not(a)"));
}

TEST(CircuitModel, TakesALargeParityInStepsThatHaveNoFault)
{
    EXPECT_EQ(
        lawsOf("xnor(a, b, c, d, e)"),
        inserted({"!a=0 | !b=0 | y.x2=0", "!a=1 | !b=0 | y.x2=1", "!a=0 | !b=1 | y.x2=1",
                  "!a=1 | !b=1 | y.x2=0", "!y.x2=0 | !c=0 | y.x3=0", "!y.x2=1 | !c=0 | y.x3=1",
                  "!y.x2=0 | !c=1 | y.x3=1", "!y.x2=1 | !c=1 | y.x3=0", "!y.x3=0 | !d=0 | y.x4=0",
                  "!y.x3=1 | !d=0 | y.x4=1", "!y.x3=0 | !d=1 | y.x4=1", "!y.x3=1 | !d=1 | y.x4=0",
                  "f | !y.x4=0 | !e=0 | y=1", "f | !y.x4=1 | !e=0 | y=0",
                  "f | !y.x4=0 | !e=1 | y=0", "f | !y.x4=1 | !e=1 | y=1"}));
}

TEST(CircuitModel, DropsWhatASignalThatStandsTwiceMakesRedundant)
{
    EXPECT_EQ(lawsOf("nand(a, a)"), inserted({"f | !a=0 | y=1", "f | !a=1 | y=0"}));
    EXPECT_EQ(lawsOf("or(a, b, a)"),
              inserted({"f | !a=1 | y=1", "f | !b=1 | y=1", "f | !a=0 | !b=0 | y=0"}));
    EXPECT_EQ(lawsOf("xor(a, a)"), inserted({"f | !a=0 | y=0", "f | !a=1 | y=0"}));
    EXPECT_EQ(lawsOf("xor(a, b, a)"), inserted({"f | !a=0 | !b=0 | y=0", "f | !a=0 | !b=1 | y=1",
                                                "f | !a=1 | !b=0 | y=0", "f | !a=1 | !b=1 | y=1"}));
}

} // namespace
