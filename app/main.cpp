// The program itms: lets the command line do its work, and turns what comes of it into an exit status.
#include "app/Output.h"
#include "app/Verbs.h"
#include "telemetry/LineReader.h"

#include <csignal>
#include <fmt/format.h>
#include <new>

int main(int argc, char** argv)
{
    app::openStandardDescriptors();
    // A reader that has seen enough (`| head`) ends the program without a word, whatever the parent process ignores.
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    // A file that grows past its limit is a write that failed: that is reported, and nothing half written stays.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    std::string name = "itms";
    try {
        const std::vector<app::Verb> verbs{
            app::adviseVerb(),   app::calibrateVerb(), app::checkVerb(),  app::diagnoseVerb(),
            app::evaluateVerb(), app::explainVerb(),   app::exportVerb(), app::fmtVerb(),
            app::graphVerb(),    app::queryVerb(),     app::reportVerb(), app::runVerb(),
            app::simulateVerb(), app::traceVerb(),
        };
        return static_cast<int>(app::runCommandLine(verbs, argc, argv, name));
    } catch (const app::FileFailure& failure) {
        app::complain(failure.what());
    } catch (const telemetry::ReadFailure& failure) {
        app::complain(failure.what());
    } catch (const app::Failure& failure) {
        app::complain(fmt::format("{}: {}", name, failure.what()));
    } catch (const std::bad_alloc&) {
        app::complain(fmt::format("{}: not enough memory\n", name));
    } catch (const std::exception& error) {
        app::complain(fmt::format("{}: {}\n", name, error.what()));
    }
    return static_cast<int>(app::ExitStatus::error);
}
