// Time, measured in interleaved pairs, and statistics of it.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace vantrel::bench {

using Action = std::function<void()>;

// How long one run of the action takes.
double Milliseconds(const Action& action);

double Median(std::vector<double> values);

// Medians over the pairs; the ratio is the median of the pairs' own ratios, second over first.
struct PairedTimes {
    double firstMilliseconds;
    double secondMilliseconds;
    double ratio;
    std::size_t pairs;
};

// Runs first, second, first, second and so on until the time is up, after one pair as a warm-up.
PairedTimes MeasurePairs(const Action& first, const Action& second, double seconds);

// The exponent with which `times` grow with `sizes`: the slope of the line fitted to their logarithms.
double GrowthExponent(const std::vector<double>& sizes, const std::vector<double>& times);

} // namespace vantrel::bench
