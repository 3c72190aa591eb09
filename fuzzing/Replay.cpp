// Checks what the fuzzer has found before, and a fixed run of mutations, without libFuzzer; writes the
// fuzzer's seeds.

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

Bytes Seed(std::uint32_t number) {
    return ZmiMutator(number).MakeFile().Build();
}

void Check(const Bytes& file) {
    CheckInput(file, largeInputs);
    CheckInput(file, smallInputs);
}

void WriteSeeds(const fs::path& folder) {
    fs::create_directories(folder);
    for (std::uint32_t i = 0; i < seedCount; ++i) {
        const Bytes seed = Seed(i);
        std::ofstream(folder / ("seed-" + std::to_string(i) + ".zmi"), std::ios::binary)
            .write(reinterpret_cast<const char*>(seed.data()), static_cast<std::streamsize>(seed.size()));
    }
}

void ReplayFile(const fs::path& path) {
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    std::ifstream input(path, std::ios::binary);
    Check(Bytes(std::istreambuf_iterator<char>(input), {}));
}

void ReplayMutations() {
    for (std::uint32_t i = 0; i < seedCount; ++i) {
        ZmiMutator mutator(i);
        const Bytes seed = Seed(i);
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

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 2 && arguments[0] == "--write-seeds") {
        WriteSeeds(arguments[1]);
        return 0;
    }
    ReplayMutations();
    for (const fs::path path : arguments) {
        if (!fs::is_directory(path)) {
            ReplayFile(path);
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(path))
            if (entry.is_regular_file())
                ReplayFile(entry.path());
    }
    return 0;
}
