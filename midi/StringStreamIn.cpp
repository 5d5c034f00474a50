#include "midi/StringStreamIn.h"

#include "midi/MidiError.h"

#include <cerrno>
#include <cstdio>
#include <limits>

namespace tarabix {

namespace {

int32_t checkedLength(size_t size)
{
    if (size > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
        throw MidiError(midierr::kOutOfMemory, StringStreamIn::kSource);
    return static_cast<int32_t>(size);
}

// Read and write like any binary open; a file the user may only read is opened for reading alone.
std::FILE* openForReading(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "a+b");
    if (!file && (errno == EACCES || errno == EROFS || errno == EPERM || errno == ETXTBSY)) {
        file = std::fopen(path.c_str(), "rb");
        if (!file && errno == ENOENT)
            errno = EACCES;  // a folder the user may not write into, not a missing one
    }
    if (!file) {
        const int32_t number = errno == ENOENT || errno == ENOTDIR ? midierr::kPathNotFound
                                                                   : midierr::kPathFileAccessError;
        throw MidiError(number, StringStreamIn::kSource);
    }
    return file;
}

}  // namespace

void StringStreamIn::clear()
{
    m_data.clear();
    m_length = 0;
    m_position = 0;
}

void StringStreamIn::setFromString(std::string s)
{
    const int32_t length = checkedLength(s.size());
    m_data = std::move(s);
    m_length = length;
    m_position = 0;
}

void StringStreamIn::setFromFile(const std::string& path)
{
    if (path.empty())
        throw MidiError(midierr::kPathNotFound, kSource);
    std::FILE* file = openForReading(path);
    std::string bytes;
    bool failed = std::fseek(file, 0, SEEK_END) != 0;
    const long size = failed ? -1 : std::ftell(file);
    std::rewind(file);
    if (size > static_cast<long>(std::numeric_limits<int32_t>::max())) {
        std::fclose(file);
        throw MidiError(midierr::kOutOfMemory, kSource);
    }
    if (size > 0) {
        bytes.resize(static_cast<size_t>(size));
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    }
    char chunk[4096];
    size_t got;
    while (!failed && (got = std::fread(chunk, 1, sizeof chunk, file)) > 0)
        bytes.append(chunk, got);
    failed = failed || std::ferror(file) != 0;
    std::fclose(file);
    if (failed)
        throw MidiError(midierr::kDeviceIoError, kSource);
    setFromString(std::move(bytes));
}

std::string StringStreamIn::read(int32_t n)
{
    return std::string(readView(n));
}

std::string_view StringStreamIn::readView(int32_t n)
{
    // A negative count is refused like a read past the end: it would move the position backwards.
    if (n < 0 || static_cast<int64_t>(m_position) + n > m_length)
        throw MidiError(midierr::kReadBeyondEnd, kSource);
    const std::string_view bytes(m_data.data() + m_position, static_cast<size_t>(n));
    m_position += n;
    return bytes;
}

std::string StringStreamIn::readToEnd()
{
    if (m_position >= m_length)
        return {};
    std::string rest = m_data.substr(static_cast<size_t>(m_position));
    m_position = m_length;
    return rest;
}

void StringStreamIn::seekTo(int32_t p)
{
    if (p < 0 || p > m_length)
        throw MidiError(midierr::kSeekOutOfRange, kSource);
    m_position = p;
}

}  // namespace tarabix
