#pragma once

// The instruction sets that the kernels are compiled for: HWY_TARGETS of Highway. The emulated one stands in
// where the machine has none of the others; Highway leaves it out for compilers that miscompile its MulHigh,
// which is not used here.
#define HWY_BROKEN_EMU128 0
#include <hwy/detect_targets.h>
