#pragma once

#include "oud/view/UdDisplay.h"
#include "tests/oud/model/UsualOud.h"

namespace tarabix::test {

// A display over the shipped pictures, attached to a model holding the usual oud (or no tuning yet).
struct DisplayRig {
    mUdCtrl model;
    UdDisplay display{loadUdResources(QStringLiteral(TARABIX_SOURCE_DIR "/data")).resources};
    QRect lastChange;

    explicit DisplayRig(bool tuned = true)
    {
        display.attach(&model);
        display.onChanged = [this](const QRect& r) { lastChange = r; };
        if (tuned)
            tuneUsualOud(model);
    }

    // Where the model places a pitch that lies on the fingerboard.
    PicPoint pointOf(int32_t note, int32_t cents) const { return model.placeOfPitch(note, cents).value().point; }
};

}  // namespace tarabix::test
