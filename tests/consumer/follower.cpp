// A program on the installed toolkit: a model that it has itself, a step, and what explains it.
#include "language/Reader.h"
#include "session/Session.h"

#include <iostream>

int main()
{
    session::Session session = session::Session::open(language::readModelText("lamp.itms", R"(
        component Lamp {
            mode bulb { good initial blown fault }
            cond light: on, off
            law bulb = good -> light = on
            law bulb = blown -> light = off
            fault good -> blown : 0.01
        }
        system room { lamp: Lamp }
    )"));
    telemetry::Step step;
    step.number = 1;
    for (const auto& atom : session.model().atoms()) {
        if (atom->id == "lamp.light=off") step.observations.push_back({atom.get(), false});
    }
    const monitor::TrackAnswer& answer = session.advance(step);
    std::cout << "lamp.light=off is explained by\n";
    for (const plant::AtomIndex mode : answer.hypotheses.front()->modes) {
        std::cout << "  " << session.plant().atom(mode)->id << "\n";
    }
}
