#pragma once

#include <cstdint>

namespace tarabix {

// Milliseconds on a steady clock, counted from the first call in this process. Times are 32-bit
// signed throughout the program; starting at zero keeps them far from overflow for any realistic
// session (24 days), where a boot-relative count could already be near its limit.
int32_t tickMs();

// Blocks the calling thread for the given number of milliseconds (nothing for 0 or less).
void sleepMs(int32_t ms);

}  // namespace tarabix
