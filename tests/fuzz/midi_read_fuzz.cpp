#include "midi/MidiError.h"
#include "midi/MidiFile.h"
#include "midi/StringStreamIn.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Any bytes read, timed, dumped and written back give a status or a dump error, never a crash or a hang.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tarabix::StringStreamIn stream;
    stream.setFromString(std::string(reinterpret_cast<const char*>(data), size));
    tarabix::MidiFile file;
    (void)file.readMidi(stream);
    (void)file.setEvtsAbsMSecs();
    try {
        (void)file.toText(), (void)file.makeMidiStr();
    } catch (const tarabix::MidiError&) {
    }
    return 0;
}
