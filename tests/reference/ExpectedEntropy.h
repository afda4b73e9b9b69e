// The entropy that is expected to be left of some hypotheses after a measurement, computed as it is defined: probabilities are
// fractions, and a logarithm comes last.
#pragma once

#include "tests/reference/Fraction.h"

#include <cmath>
#include <vector>

/// -x ln x, 0 at 0.
inline double entropyTerm(double x)
{
    return x > 0.0 ? -x * std::log(x) : 0.0;
}

/// Of weights, which need not add up to 1, but to more than 0; in nats.
inline double plainEntropy(const std::vector<Fraction>& weights)
{
    Fraction sum;
    for (const Fraction& weight : weights) {
        sum = sum + weight;
    }
    double entropy = 0.0;
    for (const Fraction& weight : weights) {
        entropy += entropyTerm((weight / sum).value());
    }
    return entropy;
}

/// `predicted[h][a]` is the probability of the value `a` under the hypothesis `h`.
inline double plainExpectedEntropy(const std::vector<Fraction>& hypotheses,
                                   const std::vector<std::vector<Fraction>>& predicted)
{
    double expected = 0.0;
    for (std::size_t value = 0; value < predicted.front().size(); ++value) {
        std::vector<Fraction> joint;
        Fraction sum;
        for (std::size_t h = 0; h < hypotheses.size(); ++h) {
            joint.push_back(hypotheses[h] * predicted[h][value]);
            sum = sum + joint.back();
        }
        if (sum != Fraction(0)) {
            expected += sum.value() * plainEntropy(joint);
        }
    }
    return expected;
}
