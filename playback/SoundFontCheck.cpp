#include "playback/SoundFontCheck.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

namespace tarabix {

namespace {

struct ChunkHeader {
    std::string id;
    uint64_t size = 0;
};

// The preset and sample tables a synthesizer needs, with the size of one record of each. The
// preset, instrument and sample tables end in a terminal record, so they hold at least two; the
// others are let pass empty, as some editors write them and synthesizers accept them.
struct TableRule {
    const char* id;
    uint64_t recordSize;
    uint64_t minRecords;
};
constexpr TableRule kPdtaTables[] = {
    {"phdr", 38, 2}, {"pbag", 4, 0}, {"pmod", 10, 0}, {"pgen", 4, 0}, {"inst", 22, 2},
    {"ibag", 4, 0},  {"imod", 10, 0}, {"igen", 4, 0}, {"shdr", 46, 2},
};

class ChunkReader {
public:
    explicit ChunkReader(const std::string& path) : m_in(path, std::ios::binary) {}
    bool good() const { return m_in.good(); }

    std::optional<std::string> fourCC(uint64_t at)
    {
        std::array<char, 4> bytes{};
        if (!readAt(at, bytes.data(), bytes.size()))
            return std::nullopt;
        return std::string(bytes.data(), bytes.size());
    }

    std::optional<ChunkHeader> header(uint64_t at)
    {
        std::array<unsigned char, 8> bytes{};
        if (!readAt(at, reinterpret_cast<char*>(bytes.data()), bytes.size()))
            return std::nullopt;
        ChunkHeader h;
        h.id.assign(reinterpret_cast<const char*>(bytes.data()), 4);
        h.size = static_cast<uint64_t>(bytes[4]) | static_cast<uint64_t>(bytes[5]) << 8 |
                 static_cast<uint64_t>(bytes[6]) << 16 | static_cast<uint64_t>(bytes[7]) << 24;
        return h;
    }

private:
    bool readAt(uint64_t at, char* out, size_t count)
    {
        m_in.clear();
        m_in.seekg(static_cast<std::streamoff>(at));
        m_in.read(out, static_cast<std::streamsize>(count));
        return m_in.gcount() == static_cast<std::streamsize>(count);
    }

    std::ifstream m_in;
};

// A chunk's data is padded to an even length; the last chunk of a list may lack its pad byte.
uint64_t chunkEnd(uint64_t at, uint64_t size)
{
    return at + 8 + size + (size & 1);
}

std::string printable(const std::string& id)
{
    std::string out;
    for (char c : id)
        out += (c >= 0x20 && c < 0x7F) ? c : '?';
    return out;
}

SoundFontCheck fail(std::string problem)
{
    return {false, std::move(problem)};
}

SoundFontCheck checkPdta(ChunkReader& reader, uint64_t begin, uint64_t end)
{
    std::array<bool, std::size(kPdtaTables)> seen{};
    for (uint64_t at = begin; at + 8 <= end;) {
        const std::optional<ChunkHeader> h = reader.header(at);
        if (!h)
            return fail("it cannot be read");
        if (at + 8 + h->size > end)
            return fail("it is damaged: its table '" + printable(h->id) + "' runs past its list");
        for (size_t i = 0; i < std::size(kPdtaTables); ++i) {
            const TableRule& rule = kPdtaTables[i];
            if (h->id != rule.id)
                continue;
            if (h->size % rule.recordSize != 0 || h->size / rule.recordSize < rule.minRecords)
                return fail(std::string("it is damaged: its table '") + rule.id + "' has a broken length");
            seen[i] = true;
        }
        at = chunkEnd(at, h->size);
    }
    for (size_t i = 0; i < seen.size(); ++i) {
        if (!seen[i])
            return fail(std::string("it is damaged: its table '") + kPdtaTables[i].id + "' is missing");
    }
    return {true, {}};
}

}  // namespace

SoundFontCheck checkSoundFontFile(const std::string& path)
{
    std::error_code ec;
    if (!std::filesystem::exists(path, ec))
        return fail("there is no such file");
    if (!std::filesystem::is_regular_file(path, ec))
        return fail("it is not a file");
    const uint64_t fileSize = std::filesystem::file_size(path, ec);
    if (ec)
        return fail("it cannot be read");
    if (fileSize == 0)
        return fail("it is empty");
    ChunkReader reader(path);
    if (!reader.good())
        return fail("it cannot be read");

    const std::optional<ChunkHeader> riff = reader.header(0);
    const std::optional<std::string> form = reader.fourCC(8);
    if (!riff || !form || riff->id != "RIFF" || *form != "sfbk")
        return fail("it is not a SoundFont");
    // A writer that leaves out the last chunk's pad byte may still count it in the RIFF size.
    const uint64_t riffEnd = 8 + riff->size;
    if (riffEnd > fileSize + 1)
        return fail("it is truncated: " + std::to_string(fileSize) + " of " + std::to_string(riffEnd) + " bytes");
    const uint64_t end = std::min(riffEnd, fileSize);

    bool info = false;
    bool sdta = false;
    bool pdta = false;
    for (uint64_t at = 12; at + 8 <= end;) {
        const std::optional<ChunkHeader> h = reader.header(at);
        if (!h)
            return fail("it cannot be read");
        if (at + 8 + h->size > end)
            return fail("it is damaged: its part '" + printable(h->id) + "' runs past the end");
        if (h->id == "LIST" && h->size >= 4) {
            const std::optional<std::string> kind = reader.fourCC(at + 8);
            if (!kind)
                return fail("it cannot be read");
            info = info || *kind == "INFO";
            sdta = sdta || *kind == "sdta";
            if (*kind == "pdta") {
                const SoundFontCheck tables = checkPdta(reader, at + 12, at + 8 + h->size);
                if (!tables.ok)
                    return tables;
                pdta = true;
            }
        }
        at = chunkEnd(at, h->size);
    }
    if (!info || !sdta || !pdta)
        return fail(std::string("it is damaged: its ") + (!info ? "INFO" : !sdta ? "sample" : "preset") +
                    " list is missing");
    return {true, {}};
}

}  // namespace tarabix
