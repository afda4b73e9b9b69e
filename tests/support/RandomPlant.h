// Small random models and situations, made with the ModelBuilder from a seed.
#pragma once

#include "engine/itms.h"
#include "monitor/step/Step.h"
#include "plant/ModelBuilder.h"
#include "tests/reference/BruteForceDiagnosis.h"
#include "tests/reference/Random.h"

#include <memory>
#include <string>
#include <vector>

/// A model that is active while it lives, its engine and its dense view.
struct ActivePlant {
    explicit ActivePlant(std::unique_ptr<plant::Model> made) : model(std::move(made))
    {
        model->activate();
        engine.rtInit();
        plant = std::make_unique<plant::Plant>(*model);
    }

    /// Number and atom of an identifier such as "c0.mode=ok"; end the program when there is none.
    Atom* atom(const std::string& id) const;
    plant::AtomIndex index(const std::string& id) const { return plant->indexOf(atom(id)); }
    std::vector<plant::AtomIndex> indices(const std::vector<const Atom*>& atoms) const;
    std::vector<std::string> ids(const std::vector<plant::AtomIndex>& atoms) const;

    /// The labels before a step.
    monitor::Prediction before(const DiagnosisProblem& problem) const;
    monitor::StepInput input(const DiagnosisProblem& problem) const;

    std::unique_ptr<plant::Model> model;
    itms engine;
    std::unique_ptr<plant::Plant> plant;
};

/// What kind of model a seed gives.
enum class PlantKind {
    mixed,   ///< valves with commands, laws at random, modes that leave conditions open
    circuit, ///< gates between inputs and outputs, each ok, stuck or unknown
};

std::unique_ptr<plant::Model> randomModel(Random& random, PlantKind kind);

/// A step of the active model, with modes and readings drawn at random: mostly such that something explains them.
DiagnosisProblem randomProblem(Random& random, PlantKind kind);
