// The diagnosis of a machine on which ZMI files show no pictures: facts in, findings with fixes out.
#pragma once

#include "tools/preview/doctor/DoctorFacts.h"

#include <string>
#include <vector>

namespace vantrel::tools {

enum class Health { Ok, Warn, Fail };

struct Finding {
    Health health;
    std::wstring text; // what was found, in one sentence
    std::wstring fix;  // empty if there is nothing to fix, or no way to
};

// Ordered from the registration to the files. Depends on nothing but the facts.
std::vector<Finding> Diagnose(const DoctorFacts& facts);

} // namespace vantrel::tools
