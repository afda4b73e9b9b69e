// An embedder's smallest program.
#include "model/keys.h"

#include <iostream>

int main() {
    std::cout << std::boolalpha << eqstr()("valve", "valve") << '\n';
}
