#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The numbers of MIDI messages and files, named once for the reader, the writer, the player and
// the tools: status bytes, controllers, meta event types, the pitch wheel and big-endian integers.
namespace tarabix {

constexpr int kMidiChannels = 16;
constexpr int kMidiPercussionChannel = 9;  // channel 10 as musicians count

// Status bytes of channel messages: the kind in the high nibble, the channel in the low one.
namespace midistatus {
constexpr uint8_t kNoteOff = 0x80;
constexpr uint8_t kNoteOn = 0x90;  // with velocity 0 also a note off
constexpr uint8_t kKeyPressure = 0xA0;
constexpr uint8_t kController = 0xB0;
constexpr uint8_t kProgramChange = 0xC0;
constexpr uint8_t kChannelPressure = 0xD0;
constexpr uint8_t kPitchWheel = 0xE0;
constexpr uint8_t kSysEx = 0xF0;
constexpr uint8_t kEscape = 0xF7;
constexpr uint8_t kMeta = 0xFF;  // in a file; on a wire it would be a reset
}  // namespace midistatus

constexpr uint8_t statusKind(uint8_t status) { return status & 0xF0; }
constexpr int statusChannel(uint8_t status) { return status & 0x0F; }

// Controller numbers (the first data byte of a controller message) the program acts on.
namespace midicc {
constexpr uint8_t kBankSelect = 0;
constexpr uint8_t kModulation = 1;
constexpr uint8_t kDataEntryMsb = 6;
constexpr uint8_t kVolume = 7;
constexpr uint8_t kBalance = 8;
constexpr uint8_t kPan = 10;
constexpr uint8_t kExpression = 11;
constexpr uint8_t kBankSelectLsb = 32;
constexpr uint8_t kDataEntryLsb = 38;
constexpr uint8_t kSustain = 64;
constexpr uint8_t kSostenuto = 66;
constexpr uint8_t kHold2 = 69;
constexpr uint8_t kReverb = 91;
constexpr uint8_t kDataIncrement = 96;
constexpr uint8_t kDataDecrement = 97;
constexpr uint8_t kNonRegisteredLsb = 98;
constexpr uint8_t kNonRegisteredMsb = 99;
constexpr uint8_t kRegisteredLsb = 100;
constexpr uint8_t kRegisteredMsb = 101;
constexpr uint8_t kNoParameter = 127;  // both halves of a parameter number: none selected
constexpr uint8_t kAllSoundOff = 120;
constexpr uint8_t kAllNotesOff = 123;
constexpr uint8_t kFirstChannelMode = 120;  // 120..127 are channel mode messages, not settings
}  // namespace midicc

// Meta event types: the byte after FF in a file, the first byte of a meta event's eData.
namespace midimeta {
constexpr uint8_t kText = 0x01;
constexpr uint8_t kCopyright = 0x02;
constexpr uint8_t kTrackName = 0x03;
constexpr uint8_t kInstrumentName = 0x04;
constexpr uint8_t kLyric = 0x05;
constexpr uint8_t kMarker = 0x06;
constexpr uint8_t kEndOfTrack = 0x2F;
constexpr uint8_t kTempo = 0x51;
constexpr uint8_t kTimeSignature = 0x58;
}  // namespace midimeta

// The pitch wheel is 14 bits, its centre no shift. The program assumes the General MIDI range of
// two semitones either way and sets it so in the pieces it writes: 4096 steps per 100 cents.
constexpr int32_t kWheelCentre = 8192;
constexpr int32_t kWheelMax = 16383;
constexpr int32_t kWheelStepsPer100Cents = 4096;

// The wheel value that shifts a channel by `cents`, to the nearest step with halves to even (the
// program's one rounding rule), held inside 0..16383: +200 cents, one step past the top, sends
// the top. Not a number sends the centre.
int32_t centsToWheel(double cents);
// A wheel value back to cents, to the nearest cent with halves to even: 0 is -200, 16383 is 200.
int32_t wheelToCents(int32_t wheel);

// The two 7-bit data bytes of a wheel value 0..16383, least significant first, and back.
constexpr uint8_t wheelLsb(int32_t wheel) { return static_cast<uint8_t>(wheel & 0x7F); }
constexpr uint8_t wheelMsb(int32_t wheel) { return static_cast<uint8_t>(wheel >> 7); }
constexpr int32_t wheelOf(int32_t lsb, int32_t msb) { return msb * 128 + lsb; }

// The unsigned big-endian integer in `bytes` (at most four are meant); fewer than four read as if
// padded with zeros on the left. Chunk lengths, header words and tempos are stored so.
constexpr uint32_t readBigEndian(std::string_view bytes)
{
    uint32_t value = 0;
    for (const char c : bytes)
        value = value << 8 | static_cast<uint8_t>(c);
    return value;
}

// The low nBytes (1..4) bytes of value, most significant first.
inline void appendBigEndian(std::string& out, uint32_t value, int nBytes)
{
    for (int shift = 8 * (nBytes - 1); shift >= 0; shift -= 8)
        out.push_back(static_cast<char>(value >> shift));
}

inline std::string bigEndianBytes(uint32_t value, int nBytes)
{
    std::string out;
    appendBigEndian(out, value, nBytes);
    return out;
}

}  // namespace tarabix
