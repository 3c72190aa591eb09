// The results of one run, as a table for people and as JSON for programs.
#pragma once

#include "benchmarks/Measurement.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vantrel::bench {

struct Row {
    std::string name;
    std::optional<double> goal; // the ratio's upper limit
    PairedTimes times;
    double bytesRead; // by the library, divided by the file's bytes
    struct Peer {
        std::string name;
        double ratio; // its time over the library's
    };
    std::vector<Peer> peers;
    std::optional<double> window; // its time over that of only reading through a small window
    std::optional<double> windowGoal;
};

struct Growth {
    std::string name; // of the series, and the unit of its sizes
    std::vector<double> sizes;
    std::vector<PairedTimes> times;

    double FloorExponent() const;
    double LibraryExponent() const;
};

struct WorkingSetRow {
    std::string name;
    std::uint64_t fileBytes;
    std::uint64_t peakBytes;
    std::optional<double> goal;
};

struct Report {
    std::vector<Row> rows;
    std::vector<Growth> growths;
    std::vector<WorkingSetRow> workingSets;
    std::uint64_t libraryBytes;
    double loadMilliseconds;
};

void PrintTable(const Report& report);
void PrintJson(const Report& report);

} // namespace vantrel::bench
