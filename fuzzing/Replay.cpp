// Replays the fuzzer's earlier finds and a fixed series of mutations, without libFuzzer.

#include "fuzzing/CheckInput.h"
#include "tests/builder/ZmiMutator.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using namespace vantrel::tests;
namespace fs = std::filesystem;

constexpr std::uint32_t seedCount = 64;
constexpr unsigned generations = 60;

void Check(const Bytes& file) {
    CheckInput(file, largeInputs);
    CheckInput(file, smallInputs);
}

void ReplayMutations() {
    for (std::uint32_t i = 0; i < seedCount; ++i) {
        ZmiMutator mutator(i);
        const Bytes seed = mutator.MakeFile().Build();
        Check(seed);
        Bytes file = seed;
        for (unsigned generation = 0; generation < generations; ++generation) {
            if (generation % 6 == 0)
                file = seed;
            mutator.Mutate(file);
            Check(file);
        }
    }
    std::printf("%u mutations\n", seedCount * generations);
}

} // namespace

// Each argument is a folder.
int main(int argc, char** argv) {
    ReplayMutations();
    for (const fs::path folder : std::vector<std::string>(argv + 1, argv + argc))
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.is_regular_file()) {
                std::printf("%s\n", entry.path().c_str());
                std::fflush(stdout);
                std::ifstream input(entry.path(), std::ios::binary);
                Check(Bytes(std::istreambuf_iterator<char>(input), {}));
            }
    return 0;
}
