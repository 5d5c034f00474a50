#pragma once

#include <cstdint>
#include <string>

namespace tarabix {

// Status numbers of the whole-file read. Callers show them in messages ("Error 53"), so they keep
// the numbers learners and testers already know from the program's messages.
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kPathAccessError = 75;  // a folder, or no permission to read
inline constexpr int32_t kDeviceIoError = 57;    // the read itself failed part way

// Reads every byte of the file at `path` into `bytes` (one byte per char). Returns 0, or one of the
// statuses above with `bytes` left empty. Never throws.
int32_t readWholeFile(const std::string& path, std::string& bytes);

}  // namespace tarabix
