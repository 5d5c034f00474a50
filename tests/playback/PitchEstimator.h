#pragma once

#include <span>

namespace tarabix::test {

// The fundamental of a steady tone, in Hz; 0 when none is found between minHz and maxHz.
// A normalised square-difference search picks the period (the first strong peak, so a loud
// second partial does not pass for the fundamental), then the peak of the windowed spectrum
// near that frequency gives the exact value: a string's slightly sharp upper partials do not
// pull it.
double fundamentalHz(std::span<const double> signal, double sampleRate, double minHz, double maxHz);

}  // namespace tarabix::test
