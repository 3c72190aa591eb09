// Makes damaged and misleading ZMI files that still pass the first checks.
#pragma once

#include "tests/builder/ZmiBuilder.h"

#include <cstdint>
#include <random>

namespace vantrel::tests {

// The same seed gives the same files on every system.
class ZmiMutator {
public:
    explicit ZmiMutator(std::uint32_t seed) : random_(seed) {}

    // A valid file of any kind, a few KiB at most.
    ZmiBuilder MakeFile();

    // Changes one thing: a field, a flag, the length, a frame record.
    void Mutate(Bytes& file);

    // Makes magic, version, kind, sizes and trailer match the length, so that the payload is parsed.
    static void Repair(Bytes& file);

    // Below limit, which is not 0.
    std::uint32_t Pick(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

private:
    std::uint32_t TellingNumber(const Bytes& file);

    std::mt19937 random_;
};

} // namespace vantrel::tests
