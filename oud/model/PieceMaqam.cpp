#include "oud/model/PieceMaqam.h"

#include "midi/MidiFile.h"

namespace tarabix {

std::optional<MaqamMarker> firstMaqamMarker(const MidiFile& piece, const mMaqams& maqams)
{
    constexpr uint8_t kTextEvent = 0x01;
    std::optional<MaqamMarker> first;
    int32_t firstMs = 0;
    for (int32_t t = 0; t < piece.numOfTracks(); ++t) {
        for (const MidiEvent& e : piece.tracks(t)->events()) {
            if (first && e.absMS >= firstMs)
                break;  // events are in time order: nothing later in this track can be earlier
            if (!e.isMeta(kTextEvent))
                continue;
            if (const auto marker = maqams.parseMaqamMarker(std::string_view(e.eData).substr(1))) {
                first = marker;
                firstMs = e.absMS;
                break;
            }
        }
    }
    return first;
}

}  // namespace tarabix
