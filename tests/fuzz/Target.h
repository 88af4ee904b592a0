#pragma once

#include <cstddef>
#include <cstdint>

/// What a target makes of one input: by the name and in the form that libFuzzer calls. Ends the
/// program when something is wrong, else returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
