#pragma once

// Which instruction sets Highway compiles kernels for; to be included before its headers. The emulated one
// stands in where the machine has none of the others. Highway leaves it out for compilers that miscompile its
// MulHigh, which is not used here.
#define HWY_BROKEN_EMU128 0
