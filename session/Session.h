// A plant that is followed: one model at work, and what is believed of it step after step.
//
//     session::Session session = session::Session::open("station.itms");
//     telemetry::StepReader reader("log.jsonl", session.model(), session.bindings());
//     auto next = reader.next();
//     while (const auto* step = std::get_if<telemetry::Step>(&next)) {
//         const monitor::TrackAnswer& answer = session.advance(*step);
//         ...                                                  // answer.hypotheses.front() is the most probable one
//         next = reader.next();
//     }
//     for (const monitor::Measurement& one : session.advise().measurements) ...
//
// A session owns everything that it works with: the model and its bindings, the engine set up over it, the plant's numbers and
// the tracker. It can be moved; what its functions return by reference stays where it is until the session dies.
//
// Several sessions may live in one process, and be advanced in turns in any order: each has a registry of its own, which is
// put in place when its engine is asked. They share that place, and std::cout, so all sessions of a process belong to one thread.
#pragma once

#include "language/meaning/ReadResult.h"
#include "monitor/track/Tracker.h"
#include "monitor/why/ConflictHistory.h"
#include "monitor/why/Measurement.h"
#include "monitor/why/StateQuery.h"
#include "session/Adopt.h"
#include "session/Errors.h"
#include "session/ReadingChanges.h"
#include "telemetry/Step.h"

#include <memory>
#include <string>
#include <vector>

class itms;

namespace session {

/// How a model file is opened.
struct OpenOptions {
    /// Folders where imports are looked for, after the importing file's own.
    std::vector<std::string> importFolders = {};
    /// Whether imports, and the implicates of a JSON model, may lie elsewhere than below the model's folder or one of these.
    bool importsAnywhere = false;
    /// Whether the engine may write its trace to std::cout. Otherwise std::cout is put into a failed state while the engine
    /// works, and is as before afterwards.
    bool trace = false;
};

/// How a plant is followed.
struct Settings {
    /// Faults of a hypothesis that are there, and faults and lost commands that began within the look-back, >= 0. A larger bound
    /// finds more, and costs more.
    int maxRank = 3;
    std::size_t keep = 8;      ///< hypotheses kept after a step, >= 1
    std::size_t lookBack = 10; ///< steps that may be gone back to; 0: none
    /// What else than expected is at least so probable, 0..1, is followed though nothing contradicts what is expected. 0: whatever
    /// is possible, which takes a small plant.
    double follow = 0.05;
    SearchLimits limits{.maxRecords = 100'000}; ///< of each step
    /// Of each step, in work and memory: what takes longer, or more, is cut (monitor/labels/Meter.h).
    monitor::WorkLimits work = usualWork;
    /// Steps with a contradiction that explain() can go back to, of which the hypotheses are kept in memory; 0: none.
    std::size_t history = 10;
    /// What looks for the explanations of a step that is not as predicted. Null: the engine. It may serve several sessions.
    std::shared_ptr<monitor::ExplanationSearch> search;

    static constexpr monitor::WorkLimits usualWork{.maxWork = 200'000'000,
                                                   .maxBytes = std::uint64_t{2} << 30U};
    static constexpr std::size_t wholeHistory = static_cast<std::size_t>(-1);
};

/// The conflicts between a step and what was believed before it.
struct ExplainedStep {
    monitor::Contradiction contradiction; ///< of the hypothesis that was the most probable one
    /// Each checked. None where no conflict was found within the bounds.
    std::vector<monitor::CheckedConflict> conflicts;
};

/// Why the hypotheses of an answer are believed.
struct Explained {
    std::vector<ExplainedStep> steps; ///< oldest first
    /// Earlier steps that contradicted the most probable hypothesis, and are not remembered.
    std::size_t leftOut = 0;
};

/// What a session remembers, as a text that can be kept anywhere: one JSON object.
struct Checkpoint {
    std::string text;
};

class Session {
public:
    /// Reads a model file, checks it, and sets an engine up over it; reads the implicates in BASE.pi beside it, if that is
    /// there. Throws ModelErrors with everything that is wrong in the files. Linear in the files and in the model.
    static Session open(const std::string& modelPath, const OpenOptions& options = {},
                        const Settings& settings = {});
    /// The same for a model that was read before. Requires: what language::readModel or language::readModelText returned.
    /// Throws ModelErrors when it has no model; `name` is then their file.
    static Session open(language::ReadResult read, const Settings& settings = {},
                        const OpenOptions& options = {}, const std::string& name = {});

    Session(Session&& other) noexcept;
    Session& operator=(Session&& other) noexcept;
    ~Session();

    /// The warnings of the model's files, then those of its implicates.
    const std::vector<text::Diagnostic>& warnings() const;

    /// Takes a step. Requires: a step over model() and bindings(), such as a telemetry::StepReader gives. Ensures: answer() and
    /// input() are of this step; the reference stays valid, and the next step overwrites what it refers to. What contradicts
    /// the model is not an error but an answer, so nothing is thrown for it. Memory and time of a step do not grow with the
    /// number of steps, except for what Settings::history keeps.
    const monitor::TrackAnswer& advance(const telemetry::Step& step);

    /// The latest answer, empty before the first step.
    const monitor::TrackAnswer& answer() const;
    /// The latest step, as the tracker took it.
    const monitor::TrackInput& input() const;

    /// The conflicts of the steps that were remembered. Costs a prediction of the plant and a check for each conflict.
    Explained explain() const;
    /// The contradictions themselves, from which explain() derives conflicts.
    const monitor::ConflictHistory& history() const;

    /// What to measure next. Linear in the variables and the hypotheses.
    monitor::Advice advise(const monitor::AdviceSettings& settings = {}) const;
    /// For AdviceSettings: the conditions that a channel reads, and what the model declares measurable. Empty where it has
    /// neither. Linear in the variables.
    std::vector<bool> measurable() const;

    /// Whether a formula holds after the latest step. Throws FormulaErrors. Linear in the model: to ask the same at many
    /// steps, read it once with formula().
    monitor::QueryAnswer query(const std::string& formula) const;
    /// A formula to ask at one step after the other: `formula.evaluate(session.answer())`. The session outlives it. Throws
    /// FormulaErrors.
    monitor::StateQuery formula(const std::string& text) const;

    /// Enough to go on in another process: what is believed, and by which settings of which model. What a reader remembers
    /// is not in it (telemetry::StepReader::state), nor is history(). Linear in the plant and the hypotheses.
    Checkpoint checkpoint() const;
    /// Goes on from a checkpoint as if there had been no end. Throws OtherModel or OtherSetting when it was made with another
    /// model or other settings, and DamagedCheckpoint when it is not one. Ensures: the session is as before if it throws.
    void resume(const Checkpoint& checkpoint, Adopt adopt = Adopt::sameModel);

    /// A short text that differs for models, their channels or their implicates that differ. Linear in the model.
    std::string fingerprint() const;
    /// The same without probabilities and rates (plant/Fingerprint.h).
    std::string structure() const;

    /// What the session owns. The references stay valid until it dies, also when it is moved.
    const Settings& settings() const;
    const language::ReadResult& read() const; ///< everything that was read; the model is there
    const plant::Model& model() const;
    const plant::Bindings& bindings() const;
    const plant::Plant& plant() const;
    /// Ensures: this session's registry is in use. Whoever keeps the reference calls this again after another session worked.
    itms& engine();
    const monitor::Tracker& tracker() const;
    monitor::Tracker& tracker();
    const ReadingChanges& readingChanges() const;
    ReadingChanges& readingChanges();

private:
    class Work;
    explicit Session(std::unique_ptr<Work> work);

    std::unique_ptr<Work> work_;
};

} // namespace session
