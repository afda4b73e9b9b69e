// What belongs together for one plant, in the order in which it has to be made: the model is read, set up by an engine, gets its
// numbers, and then a tracker.
#include "session/Session.h"

#include "language/Reader.h"
#include "language/meaning/FormulaReader.h"
#include "monitor/step/EngineExplanations.h"
#include "plant/ActiveModel.h"
#include "plant/Fingerprint.h"
#include "session/CheckpointJson.h"
#include "session/StepInput.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>

namespace session {

namespace {

// Keeps the engine's trace off std::cout, which takes nothing while it has failed.
class Quiet {
public:
    explicit Quiet(bool wanted) : wanted_(wanted), before_(std::cout.rdstate())
    {
        if (wanted_) std::cout.setstate(std::ios::failbit);
    }
    // A trace that could not be written stays known.
    ~Quiet()
    {
        if (wanted_) std::cout.clear(before_);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    bool wanted_;
    std::ios::iostate before_;
};

language::ReadResult sound(language::ReadResult read, const std::string& name)
{
    if (!read.model) throw ModelErrors(name, std::move(read.errors), std::move(read.warnings));
    return read;
}

monitor::TrackSettings trackSettings(const Settings& settings)
{
    return {settings.maxRank, settings.keep, settings.lookBack,
            settings.limits,  settings.work, settings.follow};
}

} // namespace

class Session::Work {
public:
    Work(language::ReadResult&& model, const Settings& wanted, const OpenOptions& options,
         const std::string& name)
        : settings(wanted), quiet(!options.trace), read(sound(std::move(model), name)),
          active(activate()), plant(*read.model),
          tracker(searching(), plant, trackSettings(settings)),
          history(settings.history == Settings::wholeHistory ? 0 : settings.history)
    {
        const plant::ImplicateFile& implicates = active->implicates();
        warnings = read.warnings;
        if (!implicates.errors.empty()) {
            throw ModelErrors(implicates.path, implicates.errors, std::move(warnings));
        }
        warnings.insert(warnings.end(), implicates.warnings.begin(), implicates.warnings.end());
    }

    const monitor::TrackAnswer& advance(const telemetry::Step& step)
    {
        input = inputs.of(changes, step);
        changes.add(plant, step);
        {
            const Quiet silence(quiet);
            tracker.advance(input);
        }
        if (settings.history > 0) history.add(input, tracker.answer());
        return tracker.answer();
    }

    language::FormulaClauses clausesOf(const std::string& formula) const
    {
        language::ReadFormula result = language::readFormula(formula, *read.model, read.system);
        if (!result.formula) throw FormulaErrors(std::move(result.errors));
        return std::move(*result.formula);
    }

    const Settings settings;
    const bool quiet;
    language::ReadResult read;
    std::unique_ptr<plant::ActiveModel> active;
    plant::Plant plant;
    monitor::Tracker tracker;
    StepInputs inputs{plant, read.bindings};
    monitor::TrackInput input;
    ReadingChanges changes;
    monitor::ConflictHistory history;
    std::vector<text::Diagnostic> warnings;

private:
    std::shared_ptr<monitor::ExplanationSearch> searching() const
    {
        if (settings.search) return settings.search;
        auto search = std::make_shared<monitor::EngineExplanations>(
            *active, monitor::Successors::recordsBeforeSplit);
        if (!quiet) search->rememberNothing(); // the trace is of this step's searches
        return search;
    }
    std::unique_ptr<plant::ActiveModel> activate()
    {
        const Quiet silence(quiet);
        return std::make_unique<plant::ActiveModel>(*read.model, quiet ? plant::SetUp::whenAsked
                                                                       : plant::SetUp::now);
    }
};

Session Session::open(const std::string& modelPath, const OpenOptions& options,
                      const Settings& settings)
{
    language::ReadOptions reading;
    reading.searchPath = options.importFolders;
    reading.importsAnywhere = options.importsAnywhere;
    return open(language::readModel(modelPath, reading), settings, options, modelPath);
}

Session Session::open(language::ReadResult read, const Settings& settings,
                      const OpenOptions& options, const std::string& name)
{
    return Session(std::make_unique<Work>(std::move(read), settings, options, name));
}

Session::Session(std::unique_ptr<Work> work) : work_(std::move(work)) {}
Session::Session(Session&& other) noexcept = default;
Session& Session::operator=(Session&& other) noexcept = default;
Session::~Session() = default;

const std::vector<text::Diagnostic>& Session::warnings() const
{
    return work_->warnings;
}

const monitor::TrackAnswer& Session::advance(const telemetry::Step& step)
{
    return work_->advance(step);
}

const monitor::TrackAnswer& Session::answer() const
{
    return work_->tracker.answer();
}

const monitor::TrackInput& Session::input() const
{
    return work_->input;
}

Explained Session::explain() const
{
    monitor::Meter meter(settings().limits, settings().work);
    Explained explained;
    for (const monitor::Contradiction& one : history().ofBest()) {
        explained.steps.push_back({one, monitor::conflictsOf(plant(), one)});
    }
    explained.leftOut = history().leftOut();
    return explained;
}

const monitor::ConflictHistory& Session::history() const
{
    return work_->history;
}

monitor::Advice Session::advise(const monitor::AdviceSettings& settings) const
{
    monitor::Meter meter(this->settings().limits, this->settings().work);
    return monitor::advise(plant(), answer(), input().values.observations, settings);
}

std::vector<bool> Session::measurable() const
{
    std::vector<bool> found(plant().variables().size());
    bool any = false;
    const auto note = [&](const StateVar* variable) {
        found[static_cast<std::size_t>(
            plant().variableOf(plant().indexOf(variable->atomLinks->front())))] = true;
        any = true;
    };
    for (const plant::ChannelBinding& binding : bindings().channels) {
        if (binding.kind != plant::ChannelBinding::Kind::observation) continue;
        const bool isMode = binding.variable->type == "Mode";
        if (!isMode) note(binding.variable);
        any = true;
    }
    for (const StateVar* variable : bindings().measurable) {
        note(variable);
    }
    return any ? found : std::vector<bool>();
}

monitor::QueryAnswer Session::query(const std::string& formula) const
{
    return this->formula(formula).evaluate(answer());
}

monitor::StateQuery Session::formula(const std::string& text) const
{
    return {plant(), work_->clausesOf(text)};
}

Checkpoint Session::checkpoint() const
{
    return {checkpointJson(*this).dump()};
}

void Session::resume(const Checkpoint& checkpoint, Adopt adopt)
{
    const auto json = nlohmann::json::parse(checkpoint.text, nullptr, false);
    if (json.is_discarded()) throw DamagedCheckpoint("it is not JSON");
    checkSame(*this, CheckpointField(json), adopt);
    restore(*this, CheckpointField(json));
}

std::string Session::fingerprint() const
{
    const std::string ofModel = plant::fingerprint(plant(), bindings());
    const plant::ImplicateFile& implicates = work_->active->implicates();
    return implicates.found ? plant::fingerprint(ofModel + implicates.digest) : ofModel;
}

std::string Session::structure() const
{
    const std::string ofModel = plant::structure(plant(), bindings());
    const plant::ImplicateFile& implicates = work_->active->implicates();
    return implicates.found ? plant::fingerprint(ofModel + implicates.digest) : ofModel;
}

const Settings& Session::settings() const
{
    return work_->settings;
}

const language::ReadResult& Session::read() const
{
    return work_->read;
}

const plant::Model& Session::model() const
{
    return *work_->read.model;
}

const plant::Bindings& Session::bindings() const
{
    return work_->read.bindings;
}

const plant::Plant& Session::plant() const
{
    return work_->plant;
}

itms& Session::engine()
{
    const Quiet silence(work_->quiet); // it may be set up only now
    return work_->active->engine();
}

const monitor::Tracker& Session::tracker() const
{
    return work_->tracker;
}

monitor::Tracker& Session::tracker()
{
    return work_->tracker;
}

const ReadingChanges& Session::readingChanges() const
{
    return work_->changes;
}

ReadingChanges& Session::readingChanges()
{
    return work_->changes;
}

} // namespace session
