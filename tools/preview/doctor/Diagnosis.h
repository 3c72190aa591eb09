// What is wrong with a machine on which ZMI files show no pictures, and how to fix it: facts in, findings
// out.
#pragma once

#include "tools/preview/doctor/DoctorFacts.h"

#include <string>
#include <vector>

namespace vantrel::tools {

enum class Health { Ok, Warn, Fail };

struct Finding {
    Health health;
    std::wstring text; // what was found, in one sentence
    std::wstring fix;  // empty when there is nothing to fix, or no way to
};

// In the order of the road from the registration to the files. Depends on nothing but the facts.
std::vector<Finding> Diagnose(const DoctorFacts& facts);

} // namespace vantrel::tools
