// Whether SSE2 is available, as on every x64 processor, and its unaligned loads and stores.
#pragma once

#if !defined(VANTREL_PLAIN) && (defined(__SSE2__) || (defined(_M_X64) && !defined(_M_ARM64EC)))
#define VANTREL_SSE2

#include <cstdint>

#include <emmintrin.h>

namespace vantrel {

inline __m128i LoadVector(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

inline void StoreVector(void* bytes, __m128i vector) {
    _mm_storeu_si128(static_cast<__m128i*>(bytes), vector);
}

} // namespace vantrel
#endif
