#include "benchmarks/Report.h"

#include <algorithm>
#include <cstdio>

namespace vantrel::bench {

namespace {

constexpr double exponentGoal = 0.1;
constexpr double peerGoal = 0.97; // a peer may be faster by this factor
#if defined(__GNUC__) && __GNUC__ >= 14
constexpr unsigned libraryKibibytesGoal = 288;
#else
constexpr unsigned libraryKibibytesGoal = 256;
#endif

std::vector<double> Times(const Growth& growth, double PairedTimes::*time) {
    std::vector<double> times;
    for (const PairedTimes& pair : growth.times)
        times.push_back(pair.*time);
    return times;
}

std::string RatioText(std::optional<double> ratio, int digits) {
    char text[16] = "";
    if (ratio)
        std::snprintf(text, sizeof text, "%.*f", digits, *ratio);
    return text;
}

const char* Verdict(double value, std::optional<double> goal) {
    return !goal || value <= *goal ? "" : "  missed";
}

// Puts the separator before every item of a list but the first.
class Separator {
public:
    const char* Next() {
        const char* const text = first_ ? "\n    " : ",\n    ";
        first_ = false;
        return text;
    }

private:
    bool first_ = true;
};

} // namespace

double Growth::FloorExponent() const {
    return GrowthExponent(sizes, Times(*this, &PairedTimes::firstMilliseconds));
}

double Growth::LibraryExponent() const {
    return GrowthExponent(sizes, Times(*this, &PairedTimes::secondMilliseconds));
}

void PrintTable(const Report& report) {
    std::printf("%-34s %9s %9s %9s %6s %6s %10s\n", "request", "floor ms", "dll ms", "dll/floor", "goal",
                "read", "dll/window");
    for (const Row& row : report.rows) {
        std::printf("%-34s %9.3f %9.3f %9.3f %6s %6.3f %10s%s%s\n", row.name.c_str(),
                    row.times.firstMilliseconds, row.times.secondMilliseconds, row.times.ratio,
                    RatioText(row.goal, 2).c_str(), row.bytesRead, RatioText(row.window, 3).c_str(),
                    Verdict(row.times.ratio, row.goal), Verdict(row.window.value_or(0), row.windowGoal));
    }

    if (std::any_of(report.rows.begin(), report.rows.end(),
                    [](const Row& row) { return !row.peers.empty(); }))
        std::printf("\n%-34s peer/dll, below 1 is faster than the library; goal %.2f\n",
                    "the same picture as a BMP", peerGoal);
    for (const Row& row : report.rows) {
        if (row.peers.empty())
            continue;
        std::printf("%-34s", row.name.c_str());
        for (const Row::Peer& peer : row.peers)
            std::printf("  %s %.2f%s", peer.name.c_str(), peer.ratio, peer.ratio < peerGoal ? " missed" : "");
        std::printf("\n");
    }

    if (!report.growths.empty())
        std::printf("\n%-34s %9s %9s %9s %6s\n", "growth of time, exponent", "floor", "dll", "above", "goal");
    for (const Growth& growth : report.growths) {
        const double floor = growth.FloorExponent();
        const double dll = growth.LibraryExponent();
        std::printf("%-34s %9.2f %9.2f %9.2f %6.2f%s\n", growth.name.c_str(), floor, dll, dll - floor,
                    exponentGoal, Verdict(dll - floor, exponentGoal));
    }

    if (!report.workingSets.empty())
        std::printf("\n%-34s %9s %9s %9s %6s\n", "peak working set", "file MB", "peak MB", "peak/file",
                    "goal");
    for (const WorkingSetRow& row : report.workingSets) {
        const double file = static_cast<double>(row.fileBytes);
        const double peak = static_cast<double>(row.peakBytes);
        std::printf("%-34s %9.1f %9.1f %9.3f %6s%s\n", row.name.c_str(), file / 1e6, peak / 1e6, peak / file,
                    RatioText(row.goal, 2).c_str(), Verdict(peak / file, row.goal));
    }
    std::printf("\nDLL: %llu bytes, goal %u KiB%s; loaded and freed in %.2f ms\n",
                static_cast<unsigned long long>(report.libraryBytes), libraryKibibytesGoal,
                report.libraryBytes <= libraryKibibytesGoal * 1024 ? "" : ", missed",
                report.loadMilliseconds);
}

void PrintJson(const Report& report) {
    std::printf("{\n  \"rows\": [");
    Separator rows;
    for (const Row& row : report.rows) {
        std::printf("%s{\"name\": \"%s\", \"floorMs\": %.4f, \"dllMs\": %.4f, \"ratio\": %.4f, "
                    "\"pairs\": %zu, \"bytesRead\": %.4f",
                    rows.Next(), row.name.c_str(), row.times.firstMilliseconds, row.times.secondMilliseconds,
                    row.times.ratio, row.times.pairs, row.bytesRead);
        if (row.goal)
            std::printf(", \"goal\": %.2f", *row.goal);
        if (row.window)
            std::printf(", \"window\": %.4f", *row.window);
        for (const Row::Peer& peer : row.peers)
            std::printf(", \"%s\": %.3f", peer.name.c_str(), peer.ratio);
        std::printf("}");
    }
    std::printf("\n  ],\n  \"growth\": [");
    Separator growths;
    for (const Growth& growth : report.growths) {
        std::printf("%s{\"name\": \"%s\", \"floorExponent\": %.3f, \"dllExponent\": %.3f, \"points\": [",
                    growths.Next(), growth.name.c_str(), growth.FloorExponent(), growth.LibraryExponent());
        for (std::size_t i = 0; i < growth.sizes.size(); ++i)
            std::printf("%s{\"size\": %.0f, \"floorMs\": %.4f, \"dllMs\": %.4f, \"ratio\": %.4f}",
                        i == 0 ? "" : ", ", growth.sizes[i], growth.times[i].firstMilliseconds,
                        growth.times[i].secondMilliseconds, growth.times[i].ratio);
        std::printf("]}");
    }
    std::printf("\n  ],\n  \"workingSet\": [");
    Separator sets;
    for (const WorkingSetRow& row : report.workingSets)
        std::printf("%s{\"name\": \"%s\", \"fileBytes\": %llu, \"peakBytes\": %llu}", sets.Next(),
                    row.name.c_str(), static_cast<unsigned long long>(row.fileBytes),
                    static_cast<unsigned long long>(row.peakBytes));
    std::printf("\n  ],\n  \"dll\": {\"bytes\": %llu, \"loadMs\": %.3f}\n}\n",
                static_cast<unsigned long long>(report.libraryBytes), report.loadMilliseconds);
}

} // namespace vantrel::bench
