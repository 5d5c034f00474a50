#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tarabix {

// Error numbers the MIDI layer reports. Readers return them as statuses; the file-open flow shows
// them to the learner as "Error n", so they keep the numbers the program has always shown.
namespace midierr {
inline constexpr int32_t kInvalidArgument = 5;   // also: an event runs past the end of its chunk
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kOutOfMemory = 7;
inline constexpr int32_t kSubscriptOutOfRange = 9;
inline constexpr int32_t kDivisionByZero = 11;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kDeviceIoError = 57;
inline constexpr int32_t kPathFileAccessError = 75;
inline constexpr int32_t kPathNotFound = 76;
// User-defined object errors start at 0x80040000; the byte reader's two errors sit above that base.
inline constexpr int32_t kReadBeyondEnd = static_cast<int32_t>(0x80040000u + 1025u);
inline constexpr int32_t kSeekOutOfRange = static_cast<int32_t>(0x80040000u + 1026u);
}  // namespace midierr

// A run-time error of the MIDI layer: its number, description and the class that raised it.
class MidiError : public std::runtime_error {
public:
    MidiError(int32_t number, const std::string& description, std::string source);

    // The usual description of a standard error number ("Overflow", "Subscript out of range"...).
    MidiError(int32_t number, std::string source);

    int32_t number() const { return m_number; }
    const std::string& description() const { return m_description; }
    const std::string& source() const { return m_source; }

private:
    int32_t m_number;
    std::string m_description;
    std::string m_source;
};

}  // namespace tarabix
