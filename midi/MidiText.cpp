#include "midi/MidiText.h"

#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/MidiTrack.h"

#include <cstdlib>

namespace tarabix {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr const char* kLineEnd = "\r\n";

// Header values: upper-case hex without leading zeros; a negative 16-bit word shows as its two's
// complement (E728 for the SMPTE division of one tick per millisecond).
std::string headerHex(int16_t value)
{
    auto v = static_cast<uint16_t>(value);
    std::string digits;
    do {
        digits.insert(digits.begin(), kHexDigits[v & 0xF]);
        v = static_cast<uint16_t>(v >> 4);
    } while (v != 0);
    return digits;
}

// Ticks and milliseconds: decimal, at least six digits, longer numbers in full.
void appendSixDigits(std::string& out, int32_t value)
{
    int64_t v = value;
    if (v < 0) {
        out.push_back('-');
        v = -v;
    }
    char digits[12];
    int n = 0;
    do {
        digits[n++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0);
    for (int pad = n; pad < 6; ++pad)
        out.push_back('0');
    while (n > 0)
        out.push_back(digits[--n]);
}

void appendHex(std::string& out, std::string_view bytes)
{
    for (const char c : bytes) {
        const auto b = static_cast<uint8_t>(c);
        out.push_back(kHexDigits[b >> 4]);
        out.push_back(kHexDigits[b & 0xF]);
    }
}

const char* metaLabel(uint8_t type)
{
    switch (type) {
    case 0x01: return "Text: ";
    case 0x02: return "Copyright: ";
    case 0x03: return "Track Name: ";
    case 0x04: return "Instrument: ";
    case 0x05: return "Lyric: ";
    case 0x06: return "Marker: ";
    case 0x07: return "Cue Point: ";
    case 0x20: return "Channel: ";
    case 0x21: return "Port: ";
    case 0x2F: return "End of Track: ";
    case 0x51: return "Tempo Change: ";
    case 0x54: return "SMPTE Offset: ";
    case 0x58: return "Time Signature: ";
    case 0x59: return "Key Signature: ";
    default: return nullptr;
    }
}

void appendMetaEventText(std::string& out, std::string_view eData)
{
    if (eData.empty())
        throw MidiError(midierr::kInvalidArgument, "MidiTrack");
    const auto type = static_cast<uint8_t>(eData[0]);
    const std::string_view data = eData.substr(1);
    const char* label = metaLabel(type);
    if (!label) {
        out += "??? (";
        out += std::to_string(type);
        out += "): ";
        appendHex(out, data);
        return;
    }
    out += label;
    if (type >= 0x01 && type <= 0x07) {
        out += data;
    } else if (type == 0x20 || type == 0x21) {
        if (data.empty())
            throw MidiError(midierr::kInvalidArgument, "MidiTrack");
        out += std::to_string(static_cast<uint8_t>(data[0]));
    } else if (type != 0x2F) {
        appendHex(out, data);
    }
}

}  // namespace

std::string bytesToHex(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    appendHex(out, bytes);
    return out;
}

std::string metaEventText(std::string_view eData)
{
    std::string out;
    appendMetaEventText(out, eData);
    return out;
}

std::string MidiTrack::toText() const
{
    std::string out;
    out.reserve(static_cast<size_t>(m_nEvents) * 32);
    for (const MidiEvent& e : events()) {
        out.push_back('\t');
        appendSixDigits(out, e.absTick);
        out += " (";
        appendSixDigits(out, e.absMS);
        out += ") ";
        if (e.eType == MidiEvent::kChannelMessage) {
            out += "CM: ";
            appendHex(out, std::string_view(e.eData).substr(0, 3));
        } else if (e.eType == MidiEvent::kSysEx) {
            out += "SM: ";
            appendHex(out, e.eData);
        } else if (e.eType == MidiEvent::kMeta) {
            appendMetaEventText(out, e.eData);
        }
        out += kLineEnd;
    }
    return out;
}

std::string MidiFile::toText() const
{
    std::string out = "HEADER:";
    out += kLineEnd;
    out += "======";
    out += kLineEnd;
    out += "\tFormat: " + headerHex(m_format) + kLineEnd;
    out += "\tTracks: " + headerHex(numOfTracks()) + kLineEnd;
    out += "\tDivision: " + headerHex(m_division) + kLineEnd;
    for (size_t i = 0; i < m_tracks.size(); ++i) {
        out += kLineEnd;
        out += "TRACK #" + std::to_string(i) + ":" + kLineEnd;
        out += "=========";
        out += kLineEnd;
        out += m_tracks[i].toText();
    }
    return out;
}

}  // namespace tarabix
