#include "PitchEstimator.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace tarabix::test {

namespace {

double periodFromNsdf(std::span<const double> x, double sampleRate, double minHz, double maxHz)
{
    const auto n = static_cast<int>(x.size());
    const int minLag = std::max(2, static_cast<int>(sampleRate / maxHz));
    const int maxLag = std::min(n / 2, static_cast<int>(sampleRate / minHz) + 2);
    if (maxLag <= minLag + 1)
        return 0.0;
    std::vector<double> nsdf(static_cast<size_t>(maxLag) + 2, 0.0);
    for (int lag = minLag - 1; lag <= maxLag + 1; ++lag) {
        double acf = 0.0, energy = 0.0;
        for (int i = 0; i + lag < n; ++i) {
            acf += x[i] * x[i + lag];
            energy += x[i] * x[i] + x[i + lag] * x[i + lag];
        }
        nsdf[static_cast<size_t>(lag)] = energy > 0.0 ? 2.0 * acf / energy : 0.0;
    }
    const double best = *std::max_element(nsdf.begin() + minLag, nsdf.begin() + maxLag + 1);
    // Noise and silence repeat nowhere: no lag resembles the signal well enough to be a period.
    if (best < 0.5)
        return 0.0;
    for (int lag = minLag; lag <= maxLag; ++lag) {
        const double a = nsdf[lag - 1], b = nsdf[lag], c = nsdf[lag + 1];
        if (const double curve = a - 2.0 * b + c; b >= 0.9 * best && b >= a && b >= c)
            return lag + (curve != 0.0 ? 0.5 * (a - c) / curve : 0.0);
    }
    return 0.0;
}

// Magnitude of the Hann-windowed spectrum at one frequency.
double magnitudeAt(std::span<const double> x, double sampleRate, double hz)
{
    const auto n = static_cast<double>(x.size());
    double re = 0.0, im = 0.0;
    for (size_t i = 0; i < x.size(); ++i) {
        const double window = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * static_cast<double>(i) / (n - 1));
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / sampleRate;
        re += window * x[i] * std::cos(phase);
        im -= window * x[i] * std::sin(phase);
    }
    return std::sqrt(re * re + im * im);
}

}  // namespace

double fundamentalHz(std::span<const double> signal, double sampleRate, double minHz, double maxHz)
{
    const double period = periodFromNsdf(signal, sampleRate, minHz, maxHz);
    if (period <= 0.0)
        return 0.0;
    const double rough = sampleRate / period;
    // Grid search within 2 % (a third of a semitone), then three rounds of parabolic refinement
    // on the log magnitude, a quarter of the step each time.
    double step = rough * 0.0005;
    double best = rough;
    double bestMagnitude = -1.0;
    for (double hz = rough * 0.98; hz <= rough * 1.02; hz += step) {
        const double m = magnitudeAt(signal, sampleRate, hz);
        if (m > bestMagnitude) {
            bestMagnitude = m;
            best = hz;
        }
    }
    for (int round = 0; round < 3; ++round) {
        const double a = std::log(magnitudeAt(signal, sampleRate, best - step));
        const double b = std::log(magnitudeAt(signal, sampleRate, best));
        const double c = std::log(magnitudeAt(signal, sampleRate, best + step));
        const double curve = a - 2.0 * b + c;
        if (curve < 0.0)
            best += 0.5 * (a - c) / curve * step;
        step /= 4.0;
    }
    return best;
}

double stereoFundamentalHz(std::span<const float> interleaved, double sampleRate, double fromS, double toS)
{
    std::vector<double> mono;
    const auto to = std::min(interleaved.size() / 2, static_cast<size_t>(toS * sampleRate));
    for (auto frame = static_cast<size_t>(fromS * sampleRate); frame < to; ++frame)
        mono.push_back(static_cast<double>(interleaved[2 * frame]) + interleaved[2 * frame + 1]);
    return fundamentalHz(mono, sampleRate, 80, 1000);
}

}  // namespace tarabix::test
