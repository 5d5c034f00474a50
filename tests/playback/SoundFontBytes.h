#pragma once

#include <cstdint>
#include <string>

namespace tarabix::test {

// The smallest SoundFont with the outline a synthesizer needs: an INFO list, a sample list with a
// short silent sample, and preset tables for one preset, one instrument and one sample, each
// table closed by its terminal record.
struct SoundFontShape {
    uint16_t presetBagOfTerminal = 1;  // the terminal preset's first bag: below the preset's own is out of order
    bool withPresetList = true;
};

// Little-endian, zero-filled beyond the value's four bytes.
inline std::string le(uint32_t value, int bytes)
{
    std::string out;
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(i < 4 ? (value >> (8 * i)) & 0xFF : 0);
    return out;
}

inline std::string riffChunk(const std::string& id, const std::string& data)
{
    return id + le(static_cast<uint32_t>(data.size()), 4) + data + (data.size() % 2 ? std::string(1, '\0') : "");
}

inline std::string named(const std::string& name)
{
    std::string out = name;
    out.resize(20, '\0');
    return out;
}

inline std::string soundFontBytes(const SoundFontShape& shape = {})
{
    const std::string info = riffChunk("ifil", le(2, 2) + le(1, 2)) + riffChunk("isng", std::string("EMU8000\0", 8)) +
                             riffChunk("INAM", std::string("Tarabix test\0\0", 14));
    const std::string sdta = riffChunk("smpl", std::string(2 * (64 + 46), '\0'));
    const std::string phdr = named("Test") + le(0, 2) + le(0, 2) + le(0, 2) + le(0, 4) + le(0, 4) + le(0, 4) +
                             named("EOP") + le(0, 2) + le(0, 2) + le(shape.presetBagOfTerminal, 2) + le(0, 12);
    const std::string inst = named("Test") + le(0, 2) + named("EOI") + le(1, 2);
    const std::string bags = le(0, 2) + le(0, 2) + le(0, 2) + le(0, 2);
    const std::string shdr = named("Silence") + le(0, 4) + le(64, 4) + le(8, 4) + le(56, 4) + le(44100, 4) +
                             le(60, 1) + le(0, 1) + le(0, 2) + le(1, 2) + named("EOS") + std::string(26, '\0');
    const std::string pdta = riffChunk("phdr", phdr) + riffChunk("pbag", bags) + riffChunk("pmod", std::string(10, '\0')) +
                             riffChunk("pgen", std::string(4, '\0')) + riffChunk("inst", inst) + riffChunk("ibag", bags) +
                             riffChunk("imod", std::string(10, '\0')) + riffChunk("igen", std::string(4, '\0')) +
                             riffChunk("shdr", shdr);
    std::string body = "sfbk" + riffChunk("LIST", "INFO" + info) + riffChunk("LIST", "sdta" + sdta);
    if (shape.withPresetList)
        body += riffChunk("LIST", "pdta" + pdta);
    return riffChunk("RIFF", body);
}

}  // namespace tarabix::test
