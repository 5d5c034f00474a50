#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace tarabix {

// Writes 16-bit PCM WAV files as the audio arrives, so a long piece never sits whole in memory.
// Samples are interleaved floats in -1..1; louder ones are clipped.
class WavWriter {
public:
    WavWriter() = default;
    ~WavWriter();
    WavWriter(const WavWriter&) = delete;
    WavWriter& operator=(const WavWriter&) = delete;

    bool open(const std::string& path, int sampleRate, int channels);
    bool write(std::span<const float> interleaved);
    // Fills in the sizes in the header; the file is complete only after this.
    bool close();

    std::string error() const { return m_error; }

private:
    bool fail(std::string what);

    std::FILE* m_file = nullptr;
    int m_sampleRate = 0;
    int m_channels = 0;
    uint64_t m_dataBytes = 0;
    std::string m_error;
};

bool writeWavFile(const std::string& path, std::span<const float> interleaved, int sampleRate, int channels,
                  std::string* error = nullptr);

}  // namespace tarabix
