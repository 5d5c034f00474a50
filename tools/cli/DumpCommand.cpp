#include "tools/cli/Commands.h"

#include "midi/MidiError.h"
#include "midi/MidiFile.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace tarabix::cli {

// Reads the file as the window does and writes its text dump byte for byte.
int dump(const Args& args)
{
    if (args.size() != 1) {
        std::fputs("usage: tarabix-cli dump FILE\n", stderr);
        return 2;
    }
    const std::string& path = args[0];
    // The reader creates a missing file, as the window's open flow relies on its own check first.
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        std::fprintf(stderr, "tarabix-cli dump: %s: no such file\n", path.c_str());
        return 1;
    }
    MidiFile file;
    if (const int32_t status = file.readMidiFile(path)) {
        std::printf("STATUS %d\n", status);
        return 1;
    }
    std::string text;
    try {
        text = file.toText();
    } catch (const MidiError& e) {
        std::fprintf(stderr, "tarabix-cli dump: %s: cannot describe an event: %s (error %d)\n", path.c_str(),
                     e.description().c_str(), e.number());
        return 2;
    }
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace tarabix::cli
