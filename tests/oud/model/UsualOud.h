#pragma once

#include "oud/model/mUdCtrl.h"

#include <string>

namespace tarabix::test {

// The usual Arabic oud, lowest string first, as one tunings.ini line without its line end.
inline const std::string kUsualOud = "0 :: F2 - A2 - D3 - G3 - C4 - F4 :: Fa - La - Re - Sol - Do - Fa :: 41 45 50 55 60 65";

inline void tuneUsualOud(mUdCtrl& ud)
{
    ud.loadTuningsText(kUsualOud + "\r\n");
    ud.applyTuning(0, 0);
}

}  // namespace tarabix::test
