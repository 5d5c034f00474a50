#pragma once

#include <cmath>
#include <span>

namespace tarabix::test {

// The fundamental of a steady tone, in Hz; 0 when none is found between minHz and maxHz. The
// first strong peak of a normalised square-difference search gives the period (a loud second
// partial does not pass for it), the windowed spectrum's peak near it the exact value.
double fundamentalHz(std::span<const double> signal, double sampleRate, double minHz, double maxHz);

// The fundamental (80 to 1000 Hz) of interleaved stereo samples from fromS to toS seconds, left and
// right summed; the start skips the attack, where the tone is not yet steady.
double stereoFundamentalHz(std::span<const float> interleaved, double sampleRate, double fromS, double toS);

inline double centsBetween(double hz, double referenceHz)
{
    return 1200.0 * std::log2(hz / referenceHz);
}

}  // namespace tarabix::test
