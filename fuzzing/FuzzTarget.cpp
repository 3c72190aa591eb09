// The entry points that libFuzzer calls.

#include "fuzzing/CheckInput.h"
#include "tests/builder/ZmiMutator.h"

#include <algorithm>

using namespace vantrel::tests;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckInput(Bytes(data, data + size), VANTREL_FUZZ_LIMITS);
    return 0;
}

// Mostly by structure, otherwise by libFuzzer's own mutations of the whole file or of what follows its
// header.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    ZmiMutator mutator(seed);
    Bytes file(data, data + size);
    if (size == 0 || mutator.Pick(100) == 0)
        file = mutator.MakeFile().Build();
    if (mutator.Pick(3) == 0) {
        const std::size_t kept = mutator.Pick(2) == 0 ? 0 : std::min(file.size(), file_header::size);
        const std::size_t length = file.size();
        file.resize(std::max(maxSize, length));
        file.resize(kept + LLVMFuzzerMutate(file.data() + kept, length - kept, file.size() - kept));
        if (mutator.Pick(8) != 0)
            ZmiMutator::Repair(file);
    } else {
        for (unsigned changes = 1 + mutator.Pick(3); changes > 0; --changes)
            mutator.Mutate(file);
    }
    const std::size_t length = std::min(file.size(), maxSize);
    std::copy_n(file.begin(), length, data);
    return length;
}
