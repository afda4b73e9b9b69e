// A diagnosis as a JSON record; docs/output.md describes its fields.
#pragma once

#include "report/Diagnosis.h"

namespace report {

/// One line, ended by a newline, with up to `shown` explanations; 0 shows all. Probabilities have six significant
/// digits, so that the last bits of a sum do not show.
std::string diagnosisJson(const Diagnosis& diagnosis, std::size_t shown);

} // namespace report
