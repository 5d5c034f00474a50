#include "midi/MzfContainer.h"

#include "base/ReadWholeFile.h"

#include <cctype>

namespace tarabix {

namespace {

int32_t littleEndian32(std::string_view bytes, size_t at)
{
    uint32_t v = 0;
    for (size_t i = 0; i < 4; ++i)
        v |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    return static_cast<int32_t>(v);
}

void appendLittleEndian32(std::string& out, int32_t value)
{
    const auto v = static_cast<uint32_t>(value);
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<char>(v >> (8 * i) & 0xFF));
}

}  // namespace

int32_t parseMultiPart(std::string_view content, std::vector<int32_t>& ids, std::vector<std::string>& parts)
{
    ids.clear();
    parts.clear();
    if (content.size() < 4)
        return mzf::kMalformed;
    const int32_t n = littleEndian32(content, 0);
    if (n < 1)
        return mzf::kBadCount;
    // 64-bit sums: a count or lengths near 2^31 must fail the size checks, not wrap past them.
    const int64_t dirSize = 8 * static_cast<int64_t>(n) + 4;
    const auto total = static_cast<int64_t>(content.size());
    if (total <= dirSize)
        return mzf::kNoBytesAfterDir;

    std::vector<int32_t> lengths(static_cast<size_t>(n));
    std::vector<int32_t> readIds(static_cast<size_t>(n));
    int64_t sum = 0;
    for (int32_t i = 0; i < n; ++i) {
        readIds[i] = littleEndian32(content, 4 + 8 * static_cast<size_t>(i));
        lengths[i] = littleEndian32(content, 8 + 8 * static_cast<size_t>(i));
        sum += lengths[i];
    }
    if (total < dirSize + sum)
        return mzf::kTooShort;

    parts.reserve(static_cast<size_t>(n));
    auto offset = static_cast<size_t>(dirSize);
    for (int32_t i = 0; i < n; ++i) {
        // A negative length can hide behind larger ones in the sum; cutting it is still a fault.
        if (lengths[i] < 0 || offset + static_cast<size_t>(lengths[i]) > content.size()) {
            parts.clear();
            return mzf::kMalformed;
        }
        parts.emplace_back(content.substr(offset, static_cast<size_t>(lengths[i])));
        offset += static_cast<size_t>(lengths[i]);
    }
    ids = std::move(readIds);
    return n;
}

int32_t readMultiPartFile(const std::string& path, std::vector<int32_t>& ids, std::vector<std::string>& parts)
{
    std::string content;
    if (readWholeFile(path, content) != 0) {
        ids.clear();
        parts.clear();
        return mzf::kBadCount;
    }
    return parseMultiPart(content, ids, parts);
}

int32_t getMzfMidi(const std::string& path, std::string& midiBytes, bool& hasSheet)
{
    std::vector<int32_t> ids;
    std::vector<std::string> parts;
    const int32_t n = readMultiPartFile(path, ids, parts);
    if (n < 1 || ids[0] != mzf::kMidiPartId)
        return mzf::kNotUsable;
    midiBytes = std::move(parts[0]);
    if (n > 1 && ids[1] == mzf::kSheetPartId)
        hasSheet = true;
    return 0;
}

int32_t getMzfSheet(const std::string& path, std::string& pictureBytes)
{
    std::vector<int32_t> ids;
    std::vector<std::string> parts;
    const int32_t n = readMultiPartFile(path, ids, parts);
    if (n < 2 || ids[1] != mzf::kSheetPartId)
        return mzf::kNotUsable;
    pictureBytes = std::move(parts[1]);
    return 0;
}

bool isMzfPath(std::string_view path)
{
    if (path.size() < 3)
        return false;
    const std::string_view ext = path.substr(path.size() - 3);
    return std::toupper(static_cast<unsigned char>(ext[0])) == 'M' &&
           std::toupper(static_cast<unsigned char>(ext[1])) == 'Z' &&
           std::toupper(static_cast<unsigned char>(ext[2])) == 'F';
}

std::string makeMultiPart(std::span<const MzfPart> parts)
{
    std::string out;
    appendLittleEndian32(out, static_cast<int32_t>(parts.size()));
    size_t sum = 0;
    for (const MzfPart& part : parts) {
        appendLittleEndian32(out, part.id);
        appendLittleEndian32(out, static_cast<int32_t>(part.bytes.size()));
        sum += part.bytes.size();
    }
    out.reserve(out.size() + sum + 1);
    for (const MzfPart& part : parts)
        out += part.bytes;
    if (sum == 0)
        out.push_back('\0');
    return out;
}

}  // namespace tarabix
