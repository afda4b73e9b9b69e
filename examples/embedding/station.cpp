// Follows the water station through its log, and says what is most probably wrong whenever that changes.
#include "session/Session.h"
#include "telemetry/StepReader.h"

#include <iostream>

int main(int count, char** arguments)
{
    if (count != 3) return 2; // MODEL TELEMETRY
    session::Session session = session::Session::open(arguments[1]);
    telemetry::StepReader log(arguments[2], session.model(), session.bindings());
    std::string before;
    for (auto next = log.next(); const auto* step = std::get_if<telemetry::Step>(&next);
         next = log.next()) {
        const monitor::TrackAnswer& answer = session.advance(*step);
        std::string now;
        for (const auto& [variable, since] : answer.hypotheses.front()->since)
            now += " " + session.plant().atom(since.value)->id;
        if (now != before)
            std::cout << "step " << answer.step << ": " << name(answer.status) << now << "\n";
        before = now;
    }
}
