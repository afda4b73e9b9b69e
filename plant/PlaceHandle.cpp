#include "plant/PlaceHandle.h"

namespace plant {

void reportTwice(const PlaceHandle& at, const PlaceHandle& first, std::string message,
                 std::string expected)
{
    at.report(std::move(message), std::move(expected),
              "the first is " + std::string(at.words().at) + first.seenFrom(at));
}

} // namespace plant
