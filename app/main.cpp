// The program itms: finds the verb, lets it do its work, and turns what comes of it into an exit status.
#include "app/Advise.h"
#include "app/Arguments.h"
#include "app/Check.h"
#include "app/Diagnose.h"
#include "app/Explain.h"
#include "app/Export.h"
#include "app/Fmt.h"
#include "app/Output.h"
#include "app/Query.h"
#include "app/Run.h"
#include "app/Simulate.h"
#include "app/Trace.h"
#include "telemetry/LineReader.h"
#include "text/Diagnostic.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <functional>
#include <vector>

namespace {

using app::ExitStatus;

constexpr const char* helpText = R"(Usage: itms VERB [options] FILES

Tracks what a system is doing and explains what went wrong.

Verbs:
  advise         tells which variable to measure next
  check          reports all that is wrong with model files, or their size
  diagnose       finds the faulty gates of a circuit from its inputs and outputs
  explain        tells why a step's candidates are believed: conflicts and laws
  export         writes a model as data for other programs
  fmt            lays model files out in the one way
  query          tells at which steps a formula holds
  run            the diagnosis of a plant step by step, from its telemetry
  simulate       stands in for a modelled plant: commands in, telemetry out
  trace          prints the engine's own trace of a step

Options:
  -h, --help     print this; after a verb, all about the verb
  --version      print the version

Example:
  itms diagnose examples/circuits/c17.bench \
      --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 \
      --outputs G22gat=1,G23gat=1
)";

[[noreturn]] void refuseVerb(const CLI::App& program, const std::string& word)
{
    if (word.size() > 1 && word.front() == '-') app::refuseUnknown(program);
    std::vector<std::string> verbs;
    std::string list;
    for (const CLI::App* verb : program.get_subcommands({})) {
        verbs.push_back(verb->get_name());
        list += (list.empty() ? "" : ", ") + verb->get_name();
    }
    throw app::Failure(
        fmt::format("unknown verb {}{}\n  expected: {}\n  hint: itms --help tells what they do\n",
                    text::quoted(word), app::didYouMean(word, verbs), list));
}

// What the parser has to say, in our words: the option, and what is wrong with it.
std::string explained(const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find(':'));
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        const bool twice = text.find("but received") != std::string::npos;
        return option + (twice ? ": is given more than once\n" : ": its value is missing\n");
    }
    return text + "\n";
}

/// A verb as the command line knows it, and what it does.
struct Verb {
    CLI::App* arguments;
    std::function<ExitStatus()> run;
};

ExitStatus run(int argc, char** argv, std::string& name)
{
    CLI::App program;
    program.name("itms");
    program.allow_extras();
    program.formatter_fn(
        [](const CLI::App*, const std::string&, CLI::AppFormatMode) { return helpText; });
    program.set_version_flag("--version", "itms " ITMS_VERSION);
    app::AdviseOptions advise;
    app::CheckOptions check;
    app::DiagnoseOptions diagnose;
    app::ExplainOptions explain;
    app::ExportOptions exported;
    app::FmtOptions fmt;
    app::QueryOptions query;
    app::RunOptions runOptions;
    app::SimulateOptions simulate;
    app::TraceOptions trace;
    const std::vector<Verb> verbs{
        {app::addAdvise(program, advise), [&advise] { return app::advise(advise); }},
        {app::addCheck(program, check), [&check] { return app::check(check); }},
        {app::addDiagnose(program, diagnose), [&diagnose] { return app::diagnose(diagnose); }},
        {app::addExplain(program, explain), [&explain] { return app::explain(explain); }},
        {app::addExport(program, exported), [&exported] { return app::exportModel(exported); }},
        {app::addFmt(program, fmt), [&fmt] { return app::fmt(fmt); }},
        {app::addQuery(program, query), [&query] { return app::query(query); }},
        {app::addRun(program, runOptions), [&runOptions] { return app::run(runOptions); }},
        {app::addSimulate(program, simulate), [&simulate] { return app::simulate(simulate); }},
        {app::addTrace(program, trace), [&trace] { return app::trace(trace); }},
    };
    const auto chosen = [&verbs] {
        return std::find_if(verbs.begin(), verbs.end(),
                            [](const Verb& verb) { return verb.arguments->parsed(); });
    };

    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const auto verb = chosen();
        app::print(verb != verbs.end() ? verb->arguments->help() : program.help());
        return ExitStatus::done;
    } catch (const CLI::CallForVersion& version) {
        app::print(std::string(version.what()) + "\n");
        return ExitStatus::done;
    } catch (const CLI::ParseError& error) {
        if (const auto verb = chosen(); verb != verbs.end())
            name += " " + verb->arguments->get_name();
        throw app::Failure(explained(error));
    }
    if (!program.remaining().empty()) refuseVerb(program, program.remaining().front());
    const auto verb = chosen();
    if (verb == verbs.end()) {
        app::complain(program.help());
        return ExitStatus::error;
    }
    name += " " + verb->arguments->get_name();
    app::refuseUnknown(*verb->arguments);
    return verb->run();
}

} // namespace

int main(int argc, char** argv)
{
    // A reader that has seen enough (`| head`) ends the program without a word, whatever the parent process ignores.
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    std::string name = "itms";
    try {
        return static_cast<int>(run(argc, argv, name));
    } catch (const app::FileFailure& failure) {
        app::complain(failure.what());
    } catch (const telemetry::ReadFailure& failure) {
        app::complain(failure.what());
    } catch (const app::Failure& failure) {
        app::complain(fmt::format("{}: {}", name, failure.what()));
    } catch (const std::exception& error) {
        app::complain(fmt::format("{}: {}\n", name, error.what()));
    }
    return static_cast<int>(ExitStatus::error);
}
