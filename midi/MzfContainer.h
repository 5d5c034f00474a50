#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarabix {

// An MZF file: a directory of numbered parts (32-bit little-endian count, then id and length of
// every part) followed by the parts' bytes. Part 1001 is a whole Standard MIDI File and comes
// first; part 2001, second, is the picture of the printed sheet.
namespace mzf {
inline constexpr int32_t kMidiPartId = 1001;
inline constexpr int32_t kSheetPartId = 2001;

inline constexpr int32_t kBadCount = -17;        // fewer than one part, or the file was unreadable
inline constexpr int32_t kNoBytesAfterDir = -19;  // nothing beyond the directory, not even one byte
inline constexpr int32_t kTooShort = -25;        // the parts add up beyond the end of the content
inline constexpr int32_t kMalformed = -27;       // no room for the count, or a part length below zero
inline constexpr int32_t kNotUsable = -131;      // what the extractors report for any of the above
}  // namespace mzf

struct MzfPart {
    int32_t id = 0;
    std::string bytes;
};

// On success returns the number of parts, and ids and parts hold one entry per part (the length
// of part i is parts[i].size()). Otherwise a negative code from mzf::, with both arrays empty.
// Bytes after the last part are ignored. Never throws; nothing is allocated beyond the content.
int32_t parseMultiPart(std::string_view content, std::vector<int32_t>& ids, std::vector<std::string>& parts);

// parseMultiPart of the whole file; a file that cannot be read gives mzf::kBadCount.
int32_t readMultiPartFile(const std::string& path, std::vector<int32_t>& ids, std::vector<std::string>& parts);

// The MIDI part of the MZF file at path: 0, or mzf::kNotUsable when the container is broken or
// its first part is not MIDI. hasSheet becomes true when the second part is the sheet picture and
// is left as the caller set it otherwise. The MIDI bytes themselves are not checked here.
int32_t getMzfMidi(const std::string& path, std::string& midiBytes, bool& hasSheet);

// The sheet picture's bytes: 0, or mzf::kNotUsable when there is no second part or it is not 2001.
int32_t getMzfSheet(const std::string& path, std::string& pictureBytes);

// Whether the opener reads path as MZF: its last three characters are "mzf" in any letter case.
bool isMzfPath(std::string_view path);

// The container bytes for parts in the given order. When every part is empty one padding byte
// follows the directory, because the reader wants at least one byte beyond it.
std::string makeMultiPart(std::span<const MzfPart> parts);

}  // namespace tarabix
