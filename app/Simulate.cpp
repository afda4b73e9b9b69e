// The verb `simulate`: commands and faults in, telemetry of the modelled plant out.
#include "app/Interruption.h"
#include "app/OpenModel.h"
#include "app/Output.h"
#include "app/SimulationSource.h"
#include "app/StepValue.h"
#include "app/Truth.h"
#include "app/Verbs.h"
#include "monitor/labels/Completion.h"
#include "monitor/labels/Meter.h"
#include "plant/Names.h"
#include "telemetry/Writer.h"
#include "text/Wording.h"

#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <unordered_set>

namespace app {

namespace {

struct SimulateOptions {
    ModelOptions model;
    std::optional<std::string> telemetry; ///< none: drawn commands
    bool skipBad = false;

    std::optional<std::uint64_t> steps;  ///< 20
    std::optional<std::string> commands; ///< random
    std::optional<std::uint64_t> seed;   ///< of the commands; 1

    std::vector<std::string> faults;
    std::vector<std::string> inputs;
    std::optional<std::uint64_t> random; ///< seed of all that the model leaves to chance

    std::vector<std::string> observed;
    std::optional<std::string> truth; ///< file for what really happened

    double maxSeconds = 0.0;   ///< of a step; 0: no limit
    std::uint64_t maxWork = 0; ///< of a step; 0: no limit
    std::uint64_t maxMemory = usualMaxMemory;
    bool quiet = false;
};

constexpr std::uint64_t mostSimulated = 1'000'000'000;

void checkUsage(const SimulateOptions& options)
{
    const auto refuse = [](const std::string& message) {
        throw Failure(message + "\n  hint: itms simulate --help shows an example\n");
    };
    if (options.telemetry) {
        if (options.steps || options.commands || options.seed) {
            refuse(std::string(options.steps      ? "--steps"
                               : options.commands ? "--commands"
                                                  : "--seed") +
                   " goes without a file of commands");
        }
    } else if (options.skipBad) {
        refuse("--skip-bad goes with a file of commands");
    }
    if (options.seed && options.commands == "none") refuse("--seed goes with --commands random");
}

std::unique_ptr<SimulationSource> makeSource(const SimulateOptions& options,
                                             const session::Session& session)
{
    if (options.telemetry)
        return std::make_unique<TelemetrySteps>(session, *options.telemetry, options.skipBad,
                                                !options.quiet);
    std::optional<std::uint64_t> seed;
    if (options.commands != "none") seed = options.seed.value_or(1);
    return std::make_unique<DrawnSteps>(session, options.steps.value_or(20), seed);
}

// The variables of --observe that have no channel, each once.
std::vector<plant::VariableIndex> alsoObserved(const SimulateOptions& options,
                                               const telemetry::Names& names,
                                               const plant::Plant& plant)
{
    std::vector<plant::VariableIndex> observed;
    for (const std::string& text : options.observed) {
        const std::uint32_t index = names.find(text);
        if (index == telemetry::Names::none || names[index].observed.empty())
            refuseValue("--observe", names.unknown(text, telemetry::Side::observation));
        for (const std::uint32_t number : names[index].observed) {
            const telemetry::Variable& variable = names.variables()[number];
            const plant::VariableIndex found =
                plant.variableOf(plant.indexOf(variable.variable->atomLinks->front()));
            if (!variable.binding &&
                std::find(observed.begin(), observed.end(), found) == observed.end())
                observed.push_back(found);
        }
    }
    return observed;
}

// Commands whose reading is held when it is missing: they have to be written when they are silent again.
std::unordered_set<const StateVar*> heldCommands(const plant::Bindings& bindings)
{
    std::unordered_set<const StateVar*> held;
    for (const plant::ChannelBinding& binding : bindings.channels) {
        if (binding.kind == plant::ChannelBinding::Kind::command && binding.holdSeconds)
            held.insert(binding.variable);
    }
    return held;
}

// Where the noise of readings comes from: not from where everything else is drawn, which stays as it is without noise. None where
// nothing is drawn.
telemetry::Draw noise(const SimulateOptions& options)
{
    if (!options.random) return {};
    constexpr std::uint64_t another = 0x6e6f697365;
    return [chance = simulate::Chance(*options.random ^ another)]() mutable {
        return chance.fraction();
    };
}

// A limit cut a step.
struct CutShort {
    SearchLimit limit;
    std::size_t step; // 0: before the first one
};

// Counts what a step costs, and cuts it where that is too much. Nothing is kept back: half a step is of no use.
class StepLimits {
public:
    explicit StepLimits(const SimulateOptions& options) : meter_(searches(options), work(options))
    {
    }

private:
    static SearchLimits searches(const SimulateOptions& options)
    {
        SearchLimits limits;
        if (options.maxSeconds > 0.0) limits.maxSeconds = options.maxSeconds;
        limits.stop = &interruption();
        return limits;
    }
    static monitor::WorkLimits work(const SimulateOptions& options)
    {
        return workLimits(options.maxWork, options.maxMemory);
    }

    monitor::Meter meter_;
    monitor::Meter::Finishing all_;
};

simulate::Simulator makeSimulator(const SimulateOptions& options, const session::Session& session,
                                  const telemetry::Names& names)
{
    try {
        const StepLimits limits(options);
        return {session.plant(),
                session.bindings(),
                {options.random, alsoObserved(options, names, session.plant())}};
    } catch (const monitor::Meter::Cut& cut) {
        throw CutShort{cut.limit, 0};
    }
}

// Takes step after step from the source to standard output.
class SimulateRun {
public:
    SimulateRun(const SimulateOptions& options, const session::Session& session)
        : options_(options), quiet_(options.quiet), plant_(session.plant()),
          names_(session.model(), session.bindings()), source_(makeSource(options, session)),
          faults_(readStepValues("--fault", Expected::mode, options.faults, names_)),
          inputs_(readStepValues("--input", Expected::input, options.inputs, names_)),
          simulator_(makeSimulator(options, session, names_)),
          writer_(session.bindings(), noise(options)), held_(heldCommands(session.bindings()))
    {
        if (source_->length()) refuseAfter(*source_->length());
        if (options.truth) truth_.emplace(*options.truth, plant_, session.model());
        if (simulator_.observed().empty() && !quiet_) {
            complain(fmt::format("{}: warning: nothing is observed: no variable has a channel\n"
                                 "  hint: --observe names variables to observe\n",
                                 options.model.path));
        }
    }

    ExitStatus run()
    {
        while (const auto given = source_->next()) {
            ++step_;
            const simulate::SimulatedStep simulated = limited(given->input);
            if (truth_ && step_ == 1) truth_->begin();
            print(writer_.line(given->t, commandsToWrite(simulated), atoms(simulated.observations)));
            if (truth_) truth_->write(step_, given->t, simulated);
        }
        if (interruption()) return ExitStatus::interrupted;
        if (truth_ && step_ == 0) truth_->begin();
        if (truth_) truth_->end();
        if (!quiet_) source_->reportLeftOut();
        refuseAfter(step_);
        return ExitStatus::done;
    }

private:
    // What the command line asks for at a step after the last.
    void refuseAfter(std::size_t last) const
    {
        for (const auto& [option, values] : {std::pair("--fault", &faults_), {"--input", &inputs_}}) {
            if (values->empty() || values->back().step <= last) continue;
            throw Failure(
                fmt::format("{}: {} is after the last step\n  expected: a step from 1 to {}\n",
                            option, text::quoted(values->back().text), last));
        }
    }

    simulate::SimulatedStep limited(const simulate::SimulationInput& input)
    {
        try {
            const StepLimits limits(options_);
            return simulate(input);
        } catch (const monitor::Meter::Cut& cut) {
            throw CutShort{cut.limit, step_};
        }
    }

    // What is given from outside, with what the command line adds to it: its inputs take the place of others.
    simulate::SimulatedStep simulate(simulate::SimulationInput input)
    {
        // By rising step: a later value of the same input comes later, and replaces the one before.
        for (const StepValue& wanted : inputs_) {
            if (wanted.step > step_) break;
            std::erase_if(input.observations, [&](plant::AtomIndex value) {
                return plant_.atom(value)->stateVar == wanted.value->stateVar;
            });
            input.observations.push_back(plant_.indexOf(wanted.value));
        }
        for (const StepValue& fault : faults_) {
            if (fault.step == step_) input.injections.push_back(plant_.indexOf(fault.value));
        }
        auto result = simulator_.step(input);
        if (const auto* problem = std::get_if<simulate::SimulationProblem>(&result)) fail(*problem);
        warnOfIgnored(std::get<simulate::SimulatedStep>(result));
        return std::move(std::get<simulate::SimulatedStep>(result));
    }

    // Says once of each --input that the variable has another value, although it is given.
    void warnOfIgnored(const simulate::SimulatedStep& simulated)
    {
        for (const StepValue& wanted : inputs_) {
            if (quiet_ || wanted.step > step_ || warned_.contains(wanted.value) ||
                std::find(simulated.ignored.begin(), simulated.ignored.end(),
                          plant_.indexOf(wanted.value)) == simulated.ignored.end())
                continue;
            warned_.insert(wanted.value);
            const plant::VariableIndex variable = plant_.variableOf(plant_.indexOf(wanted.value));
            complain(fmt::format(
                "itms simulate: warning: step {}: {} is not what was given, '{}', but '{}', which "
                "follows "
                "from the rest\n",
                step_, text::quoted(plant::nameOf(*wanted.value->stateVar)), wanted.value->value,
                plant_.atom(simulated.values[static_cast<std::size_t>(variable)])->value));
        }
    }

    [[noreturn]] void fail(const simulate::SimulationProblem& problem) const
    {
        using Kind = simulate::SimulationProblem::Kind;
        std::string list;
        for (const plant::AtomIndex value : problem.values) {
            const Atom* atom = plant_.atom(value);
            list += (list.empty() ? "" : ", ") +
                    (problem.kind == Kind::unreachable ? atom->value : atom->id);
        }
        if (problem.kind == Kind::unreachable) {
            const Atom* injected = plant_.atom(problem.injected);
            refuseValue("--fault",
                        {fmt::format("no transition leads '{}' to '{}' at step {}",
                                     plant::nameOf(*injected->stateVar), injected->value, step_),
                         list, "what it can be depends on its value before and on the commands"});
        }
        if (problem.kind == Kind::unsettled) {
            throw Failure(
                fmt::format("step {}: no values were found for what the modes leave open, "
                            "with {} of them taken back\n",
                            step_, text::grouped(monitor::completionRetreats)));
        }
        throw Failure(
            list.empty()
                ? fmt::format("step {}: the laws leave no values for what the modes do not "
                              "determine\n",
                              step_)
                : fmt::format("step {}: by the laws, these cannot be together: {}\n", step_, list));
    }

    std::vector<Atom*> atoms(const std::vector<plant::AtomIndex>& indices) const
    {
        std::vector<Atom*> result;
        for (const plant::AtomIndex index : indices) {
            result.push_back(plant_.atom(index));
        }
        return result;
    }

    // Those that are not silent, in the order of the names. One that is missing is silent, unless it is held.
    std::vector<Atom*> commandsToWrite(const simulate::SimulatedStep& simulated) const
    {
        std::unordered_map<const StateVar*, Atom*> given;
        for (Atom* command : atoms(simulated.commands)) {
            given.emplace(command->stateVar, command);
        }
        std::vector<Atom*> result;
        for (std::size_t i = names_.observedCount(); i < names_.variables().size(); ++i) {
            const StateVar* variable = names_.variables()[i].variable;
            Atom* command = given.at(variable);
            if (command != variable->atomLinks->front() || held_.contains(variable))
                result.push_back(command);
        }
        return result;
    }

    const SimulateOptions& options_;
    bool quiet_;
    const plant::Plant& plant_;
    telemetry::Names names_;
    std::unique_ptr<SimulationSource> source_;
    std::vector<StepValue> faults_;
    std::vector<StepValue> inputs_;
    simulate::Simulator simulator_;
    telemetry::StepWriter writer_;
    std::unordered_set<const StateVar*> held_;
    std::optional<TruthFile> truth_;
    std::unordered_set<const Atom*> warned_; // of these inputs
    std::size_t step_ = 0;
};

ExitStatus simulate(const SimulateOptions& options)
{
    checkUsage(options);
    FileRoles files;
    files.writesStandardOutput();
    files.writes(options.truth, "what really happens", "--truth");
    if (options.telemetry) files.reads(*options.telemetry, "the telemetry");
    const session::Session session = openModel("simulate", options.model, files, options.quiet);
    catchInterruptions();
    try {
        return SimulateRun(options, session).run();
    } catch (const CutShort& cut) {
        if (cut.limit == SearchLimit::stopped) return ExitStatus::interrupted;
        const std::string where =
            cut.step == 0 ? "before the first step" : fmt::format("step {}", cut.step);
        complain(fmt::format("itms simulate: {}: cut short (limit: {})\n"
                             "  hint: --max-{} sets the limit; 0 is none\n",
                             where, monitor::name(cut.limit), monitor::name(cut.limit)));
        return ExitStatus::unexplained;
    }
}

std::vector<Section> sections(SimulateOptions& options)
{
    return {
        {"",
         {modelRow(options.model.path, "a model file, .itms"),
          {"COMMANDS",
           "",
           "telemetry whose commands are given to the plant, with\nthe values that it has of "
           "inputs; - for standard\ninput. Without it, commands are drawn",
           &options.telemetry,
           {},
           2},
          importRow(options.model.importFolders,
                    "look for imported files there, too; may be repeated"),
          importsAnywhereRow(options.model.importsAnywhere),
          skipBadRow(options.skipBad)}},
        {"Without COMMANDS",
         {{"--steps", "N", "how many (default 20)", &options.steps, wholeNumber(1, mostSimulated)},
          {"--commands", "random|none",
           "random: each command is given at one step in five (default); none: all are silent",
           &options.commands, oneOf({"random", "none"})},
          {"--seed", "N", "of the random commands (default 1)", &options.seed, wholeNumber(0)}}},
        {"What happens",
         {{"--fault",
           "VARIABLE=VALUE@STEP",
           "a mode has this value at this step; may be repeated",
           &options.faults,
           {}},
          {"--input",
           "VARIABLE=VALUE[@STEP]",
           "an input has this value from this step on (default: the first); may be repeated",
           &options.inputs,
           {}},
          {"--random", "SEED",
           "draw faults, repairs, lost commands and what nothing\ndetermines by the model's "
           "probabilities. Otherwise\neverything goes as predicted, and nothing breaks by\nitself",
           &options.random, wholeNumber(0)}}},
        {"How long it may take",
         {maxSecondsRow(options.maxSeconds, "give a step up"), maxWorkRow(options.maxWork, "..."),
          maxMemoryRow(options.maxMemory)}},
        {"What to print",
         {{"--observe",
           "VARIABLE",
           "observe this variable as well; may be repeated",
           &options.observed,
           {}},
          {"--truth", "FILE",
           "write what really happens, a JSON record a step: the modes, their changes, the "
           "commands that were lost",
           &options.truth, fileName()},
          quietRow(options.quiet, "no warnings")}}};
}

} // namespace

Verb simulateVerb()
{
    const auto options = std::make_shared<SimulateOptions>();
    return {
        "simulate",
        "stands in for a modelled plant: commands in, telemetry out",
        "itms simulate MODEL [COMMANDS] [options]",
        "Stands in for a plant: follows commands as the model says, breaks what it is told\nto "
        "break, and prints the telemetry, a JSON record a step. The steps count from 1;\nbefore "
        "the "
        "first, everything is in its initial state.",
        sections(*options),
        "",
        "0 done; 2 an error in the command line, the model or the commands, a fault that cannot "
        "happen when it is asked for, or modes that cannot be together; 3 a limit cut a step "
        "short, "
        "which is not printed; 130 interrupted.",
        "simulate examples/models/valve.itms --steps 8 --seed 22 \\\n"
        "    --input valve.inflow=positive --fault valve.position=stuckClosed@6",
        [options] { return simulate(*options); }};
}

} // namespace app
