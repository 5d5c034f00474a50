#include "midi/MidiError.h"

namespace tarabix {

namespace {

std::string standardDescription(int32_t number)
{
    switch (number) {
    case midierr::kInvalidArgument: return "Invalid procedure call or argument";
    case midierr::kOverflow: return "Overflow";
    case midierr::kOutOfMemory: return "Out of memory";
    case midierr::kSubscriptOutOfRange: return "Subscript out of range";
    case midierr::kDivisionByZero: return "Division by zero";
    case midierr::kTypeMismatch: return "Type mismatch";
    case midierr::kDeviceIoError: return "Device I/O error";
    case midierr::kPathFileAccessError: return "Path/File access error";
    case midierr::kPathNotFound: return "Path not found";
    case midierr::kReadBeyondEnd: return "Attempt to read beyond end of stream";
    case midierr::kSeekOutOfRange: return "Attempt to seek out of range";
    default: return "Application-defined or object-defined error";
    }
}

}  // namespace

MidiError::MidiError(int32_t number, const std::string& description, std::string source)
    : std::runtime_error(description), m_number(number), m_description(description), m_source(std::move(source))
{
}

MidiError::MidiError(int32_t number, std::string source)
    : MidiError(number, standardDescription(number), std::move(source))
{
}

}  // namespace tarabix
