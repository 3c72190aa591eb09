#include "properties/ImageFacts.h"

#include "support/TextBuffer.h"

namespace vantrel {

void AssignDimensions(VariantHolder& value, const std::uint32_t (&dimensions)[2]) {
    TextBuffer text;
    text.Format(L"%u x %u", dimensions[0], dimensions[1]);
    value.AssignText(text.Buffer());
}

} // namespace vantrel
