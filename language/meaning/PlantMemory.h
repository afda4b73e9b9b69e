// How much memory a plant takes, so that one for which there is none is refused before it is made.
#pragma once

#include "language/meaning/Types.h"

#include <cstdint>

namespace language {

/// About as many bytes as a part of this type takes by itself, without its parts and the laws around it: a model that is at work
/// needs no less. Linear in the type's variables.
std::uint64_t bytesOf(const ComponentType& type);

/// The bytes that this process may still take; the largest number where nothing says so.
std::uint64_t freeBytes();

/// `6.6 GiB`, `12 MiB`.
std::string inBytes(std::uint64_t bytes);

} // namespace language
