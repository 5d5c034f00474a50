#include "playback/WavWriter.h"

#include "base/Rounding.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tarabix {

namespace {

constexpr size_t kHeaderBytes = 44;
// The RIFF size fields are 32-bit; the data may fill what the header leaves.
constexpr uint64_t kMaxDataBytes = 0xFFFFFFFFull - (kHeaderBytes - 8);

void putLe(std::array<unsigned char, kHeaderBytes>& h, size_t at, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        h[at + static_cast<size_t>(i)] = static_cast<unsigned char>((value >> (8 * i)) & 0xFF);
}

std::array<unsigned char, kHeaderBytes> header(int sampleRate, int channels, uint32_t dataBytes)
{
    std::array<unsigned char, kHeaderBytes> h{};
    const auto rate = static_cast<uint32_t>(sampleRate);
    const auto ch = static_cast<uint32_t>(channels);
    std::copy_n("RIFF", 4, h.begin());
    putLe(h, 4, dataBytes + (kHeaderBytes - 8), 4);
    std::copy_n("WAVEfmt ", 8, h.begin() + 8);
    putLe(h, 16, 16, 4);                // fmt chunk size
    putLe(h, 20, 1, 2);                 // PCM
    putLe(h, 22, ch, 2);
    putLe(h, 24, rate, 4);
    putLe(h, 28, rate * ch * 2, 4);     // bytes per second
    putLe(h, 32, ch * 2, 2);            // bytes per frame
    putLe(h, 34, 16, 2);                // bits per sample
    std::copy_n("data", 4, h.begin() + 36);
    putLe(h, 40, dataBytes, 4);
    return h;
}

int16_t toPcm16(float sample)
{
    const double clipped = std::clamp(static_cast<double>(sample), -1.0, 1.0);
    return static_cast<int16_t>(std::clamp(roundHalfEvenInt(clipped * 32767.0), -32767, 32767));
}

}  // namespace

WavWriter::~WavWriter()
{
    if (m_file)
        close();
}

bool WavWriter::fail(std::string what)
{
    m_error = std::move(what);
    return false;
}

bool WavWriter::open(const std::string& path, int sampleRate, int channels)
{
    if (m_file)
        close();
    m_error.clear();
    if (sampleRate <= 0 || channels <= 0 || channels > 8)
        return fail("unsupported audio format");
    m_file = std::fopen(path.c_str(), "wb");
    if (!m_file)
        return fail("cannot write " + path);
    m_sampleRate = sampleRate;
    m_channels = channels;
    m_dataBytes = 0;
    const auto h = header(sampleRate, channels, 0);
    if (std::fwrite(h.data(), 1, h.size(), m_file) != h.size())
        return fail("cannot write " + path);
    return true;
}

bool WavWriter::write(std::span<const float> interleaved)
{
    if (!m_file)
        return fail("no WAV file is open");
    if (interleaved.size() % static_cast<size_t>(m_channels) != 0)
        return fail("a partial frame of samples");
    if (m_dataBytes + interleaved.size() * 2 > kMaxDataBytes)
        return fail("the WAV file would pass 4 GB");
    std::vector<unsigned char> bytes(interleaved.size() * 2);
    for (size_t i = 0; i < interleaved.size(); ++i) {
        const auto v = static_cast<uint16_t>(toPcm16(interleaved[i]));
        bytes[2 * i] = static_cast<unsigned char>(v & 0xFF);
        bytes[2 * i + 1] = static_cast<unsigned char>(v >> 8);
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_file) != bytes.size())
        return fail("cannot write the WAV file");
    m_dataBytes += bytes.size();
    return true;
}

bool WavWriter::close()
{
    if (!m_file)
        return fail("no WAV file is open");
    const auto h = header(m_sampleRate, m_channels, static_cast<uint32_t>(m_dataBytes));
    bool ok = std::fseek(m_file, 0, SEEK_SET) == 0 && std::fwrite(h.data(), 1, h.size(), m_file) == h.size();
    ok = std::fclose(m_file) == 0 && ok;
    m_file = nullptr;
    return ok || fail("cannot finish the WAV file");
}

bool writeWavFile(const std::string& path, std::span<const float> interleaved, int sampleRate, int channels,
                  std::string* error)
{
    WavWriter writer;
    const bool ok = writer.open(path, sampleRate, channels) && writer.write(interleaved) && writer.close();
    if (!ok && error)
        *error = writer.error();
    return ok;
}

}  // namespace tarabix
