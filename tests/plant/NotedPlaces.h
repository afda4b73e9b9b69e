// A front end for tests of checks: places are numbers, and what is reported is noted as text.
#pragma once

#include "plant/PlaceHandle.h"

#include <string>
#include <vector>

class NotedPlaces : public plant::PlaceBook {
public:
    plant::PlaceHandle at(std::uint32_t number) { return {*this, {number, 0, 0, 0}}; }

    void report(const plant::PlaceKey& at, text::Message what) override
    {
        noted.push_back(std::to_string(at[0]) + ": " + what.format());
    }
    std::string reference(const plant::PlaceKey& to, const plant::PlaceKey&) const override
    {
        return "#" + std::to_string(to[0]);
    }
    const plant::Words& words() const override { return ownWords; }

    /// What was reported since the last call.
    std::string take()
    {
        std::string all;
        for (const std::string& each : noted) {
            all += each;
        }
        noted.clear();
        return all;
    }

    plant::Words ownWords;
    std::vector<std::string> noted;
};
