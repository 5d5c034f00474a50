#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarabix {

// The text dump of MIDI data, for inspection: MidiFile::toText and MidiTrack::toText build on
// these. Lines end in "\r\n"; text carried by events is copied byte for byte.

// Each byte as two upper-case hex digits, no separator; empty for no bytes.
std::string bytesToHex(std::string_view bytes);

// Describes one meta event given as its type byte followed by its data ("Tempo Change: 07A120").
// Raises MidiError kInvalidArgument when there is no type byte, or for a channel or port event
// without its data byte.
std::string metaEventText(std::string_view eData);

}  // namespace tarabix
