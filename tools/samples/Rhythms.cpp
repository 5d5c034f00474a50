#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

const Rhythm& maqsum()
{
    static const Rhythm r{"Maqsum", 4, 4, 8, "DT.TD.T.", "DTkTDkTk", ""};
    return r;
}

const Rhythm& baladi()
{
    static const Rhythm r{"Baladi", 4, 4, 8, "DD.TD.T.", "DDkTDkTk", ""};
    return r;
}

const Rhythm& saidi()
{
    static const Rhythm r{"Sa'idi", 4, 4, 8, "DT.DD.T.", "DTkDDkTk", ""};
    return r;
}

const Rhythm& wahda()
{
    static const Rhythm r{"Wahda", 4, 4, 8, "D..T..T.", "D.kTk.TT", ""};
    return r;
}

const Rhythm& samaiThaqil()
{
    static const Rhythm r{"Sama'i thaqil", 10, 8, 8, "D..T.DDT..", "DkkTkDDTkk", "3,2,2,3"};
    return r;
}

const Rhythm& malfuf()
{
    static const Rhythm r{"Malfuf", 2, 4, 16, "D..T..T.", "D.kTk.TT", ""};
    return r;
}

}  // namespace tarabix::samples
