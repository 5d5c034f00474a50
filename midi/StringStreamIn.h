#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarabix {

// Sequential reader over a byte string held in memory (one byte per char). MIDI integers are read
// from it big-endian by the track and file readers, MZF integers little-endian by the container.
// Every failure is raised as a MidiError with source "StringStreamIn"; a read that would cross the
// end consumes nothing, so a caller that catches it still finds the position where it stopped.
class StringStreamIn {
public:
    int32_t streamLen() const { return m_length; }
    int32_t remainingLen() const { return m_length - m_position; }
    int32_t currentPos() const { return m_position; }
    bool EOS() const { return m_position >= m_length; }
    bool BOS() const { return m_position == 0; }
    bool isEmpty() const { return m_length == 0; }
    std::string wholeString() const { return m_data; }

    void clear();
    void setFromString(std::string s);

    // Takes the whole file. A path that does not exist in an existing folder is created as an empty
    // file (the open is for reading and writing) and the stream comes out empty; callers that must
    // not create files test the path first. A file the user may only read is still read. An open
    // that fails raises kPathNotFound or kPathFileAccessError, a failed read kDeviceIoError.
    void setFromFile(const std::string& path);

    std::string read(int32_t n);
    // The same rules as read, without a copy; the view lives until the content is replaced.
    std::string_view readView(int32_t n);
    std::string readToEnd();
    void seekTo(int32_t p);

    static constexpr const char* kSource = "StringStreamIn";

private:
    std::string m_data;
    int32_t m_length = 0;
    int32_t m_position = 0;
};

}  // namespace tarabix
