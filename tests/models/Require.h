// What every fuzzer shares: the check that ends a run as a finding, and the bytes of an input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <mailengine/support/platform/text/String.h>

// A broken promise is a finding as much as a sanitizer's report: abort makes libFuzzer keep the input.
inline void Require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

inline std::string_view ViewOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline unsigned int LengthOf(const CString& text) {
    return static_cast<unsigned int>(text.View().size());
}
