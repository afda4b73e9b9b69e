#include "plant/SignedOrder.h"

#include "model/keys.h"

#include <algorithm>
#include <array>

namespace plant {

namespace {

using SignedPlaces = std::multimap<bool, std::uint8_t, eqbool>;

// The orders of so few literals are found once for each combination of signs.
constexpr std::size_t most = 6;
using Order = std::array<std::uint8_t, most>;

std::vector<Order> makeOrders()
{
    std::vector<Order> orders(std::size_t{1} << (most + 1));
    for (std::size_t size = 0; size <= most; ++size) {
        for (std::size_t signs = 0; signs < std::size_t{1} << size; ++signs) {
            SignedPlaces places;
            for (std::size_t i = 0; i < size; ++i) {
                places.insert({(signs >> i & 1U) != 0, static_cast<std::uint8_t>(i)});
            }
            // A bit above the signs tells the size.
            Order& order = orders[(std::size_t{1} << size) + signs];
            std::size_t next = 0;
            for (const auto& [sign, place] : places) {
                order[next++] = place;
            }
        }
    }
    return orders;
}

void sortFew(std::vector<SignedNumber>& literals)
{
    static const std::vector<Order> orders = makeOrders();
    std::array<SignedNumber, most> given{};
    std::size_t key = std::size_t{1} << literals.size();
    for (std::size_t i = 0; i < literals.size(); ++i) {
        given[i] = literals[i];
        key |= static_cast<std::size_t>(literals[i] & 1U) << i;
    }
    for (std::size_t i = 0; i < literals.size(); ++i) {
        literals[i] = given[orders[key][i]];
    }
}

} // namespace

void sortAsListed(std::vector<SignedNumber>& literals)
{
    if (literals.size() <= most) {
        sortFew(literals);
        return;
    }
    // Of one sign, each goes before all others.
    const bool mixed = std::any_of(literals.begin(), literals.end(), [&](SignedNumber literal) {
        return ((literal ^ literals.front()) & 1U) != 0;
    });
    if (!mixed) {
        std::reverse(literals.begin(), literals.end());
        return;
    }
    std::multimap<bool, SignedNumber, eqbool> listed;
    for (const SignedNumber literal : literals) {
        listed.insert({(literal & 1U) != 0, literal});
    }
    literals.clear();
    for (const auto& [sign, literal] : listed) {
        literals.push_back(literal);
    }
}

} // namespace plant
