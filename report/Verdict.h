// A diagnosis in words: what explains the outputs, how sure that is, and whether anything was left out.
#pragma once

#include "report/Diagnosis.h"

namespace report {

/// A few sentences in one line. Where the answer is not complete or there is none, the last one says what to try.
std::string verdict(const Diagnosis& diagnosis);

/// The names of the parts at fault: "G10gat and G22gat".
std::string partsAtFault(const Explanation& explanation);

} // namespace report
