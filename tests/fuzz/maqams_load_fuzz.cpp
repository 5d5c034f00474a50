#include "oud/model/mMaqams.h"
#include "tests/fuzz/FuzzTempFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Any maqams.ini loads or names its fault; every maqam it gives can be chosen on every tonic,
// spells every quarter tone, and "Q:" markers of any text are understood or refused.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string& path = tarabix::fuzz::tempPath("maqams");
    if (!tarabix::fuzz::writeTempFile(path, bytes))
        return 0;
    tarabix::mMaqams maqams;
    if (!maqams.loadMaqams(path).empty() && maqams.maqamCount() != 0)
        __builtin_trap();
    for (int32_t index = 0; index <= maqams.maqamCount() + 1; ++index) {
        const std::string name = maqams.maqamName(index);
        (void)maqams.maqamHomeTonic(index);
        (void)maqams.maqamTonics(index);
        for (int32_t tonic = 0; tonic < 12; ++tonic) {
            maqams.selectMaqam(index, tonic);
            for (int32_t pc = 0; pc < 12; ++pc)
                (void)maqams.curDegreeOf(pc);
            for (int32_t cents = -150; cents <= 150; cents += 25)
                (void)maqams.spellPitch(60 + tonic, cents);
        }
        const auto parsed = maqams.applyMaqamMarker("Q:" + name + "/" + std::to_string(index % 12));
        if (index >= 1 && index <= maqams.maqamCount() && !name.empty() && name.find('/') == std::string::npos && !parsed)
            __builtin_trap();
    }
    // The fuzz bytes themselves as a piece's text event.
    if (const auto marker = maqams.parseMaqamMarker(bytes))
        if (marker->index < 1 || marker->index > maqams.maqamCount() || marker->tonic < 0 || marker->tonic > 11)
            __builtin_trap();
    (void)maqams.spellPitch(static_cast<int32_t>(size) - 64, static_cast<int32_t>(size) * 37 - 5000);
    return 0;
}
