#include "benchmarks/Measurement.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantrel::bench {

namespace {

double Now() {
    LARGE_INTEGER frequency;
    LARGE_INTEGER count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart) * 1000;
}

} // namespace

double Milliseconds(const Action& action) {
    const double begin = Now();
    action();
    return Now() - begin;
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

PairedTimes MeasurePairs(const Action& first, const Action& second, double seconds) {
    constexpr std::size_t fewestPairs = 3;
    std::vector<double> firstTimes;
    std::vector<double> secondTimes;
    std::vector<double> ratios;
    first();
    second();
    for (const double begin = Now(); ratios.size() < fewestPairs || Now() - begin < seconds * 1000;) {
        firstTimes.push_back(Milliseconds(first));
        secondTimes.push_back(Milliseconds(second));
        ratios.push_back(secondTimes.back() / firstTimes.back());
    }
    const std::size_t pairs = ratios.size();
    return {Median(std::move(firstTimes)), Median(std::move(secondTimes)), Median(std::move(ratios)), pairs};
}

double GrowthExponent(const std::vector<double>& sizes, const std::vector<double>& times) {
    const double count = static_cast<double>(sizes.size());
    double x = 0;
    double y = 0;
    double xx = 0;
    double xy = 0;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const double size = std::log(sizes[i]);
        const double time = std::log(times[i]);
        x += size;
        y += time;
        xx += size * size;
        xy += size * time;
    }
    return (count * xy - x * y) / (count * xx - x * x);
}

} // namespace vantrel::bench
