#include "oud/model/mUdCtrl.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Any tunings text gives a usable list (or the built-in tuning), and every tuning of it can be
// applied in every tuning octave and view, placed on the fingerboard and hit by the mouse and the
// keyboard grid without a crash.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    tarabix::mUdCtrl ud;
    (void)ud.loadTuningsText(std::string(reinterpret_cast<const char*>(data), size));
    if (ud.tuningCount() < 1)
        __builtin_trap();
    for (int32_t index = 0; index < ud.tuningCount(); ++index) {
        int32_t id = -1;
        (void)ud.tuningAt(index, 1, id);
        for (int32_t octShift = -2; octShift <= 2; ++octShift) {
            ud.setOrientation((index + octShift + 2) % 4, true);
            ud.applyTuning(id, octShift);
            (void)ud.buildPositionTable(), (void)ud.lowestNote(), (void)ud.highestNote(), (void)ud.highestCents();
            for (int32_t note = 0; note < 128; note += 7)
                (void)ud.fingerFor(note, note % 2 == 1);
            for (int32_t s = 0; s < tarabix::kMaxStrings; ++s)
                (void)ud.stringStopPoint(s, 2 * s + octShift + 2);
            for (const tarabix::PicPointF point : {tarabix::PicPointF{59.0, 153.0}, {300.5, 100.25}, {678.0, 23.0}, {-5.0, 900.0}})
                (void)ud.pitchAtPoint(point, octShift % 2 == 0, 8.0);
            (void)ud.pitchAtGridCell({octShift + 2, 3}, octShift, -octShift, (octShift + 2) % 4, octShift > 0);
        }
    }
    return 0;
}
