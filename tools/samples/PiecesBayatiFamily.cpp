// Bayati and Saba on D, both resting on the half-flat E above the tonic. Melodies are written at
// sounding pitch; "|" separates bars.
#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

namespace {

Piece bayatiDance()
{
    Piece p;
    p.folder = "bayati";
    p.fileName = "bayati-dance.mzf";
    p.title = "Bayati Dance";
    p.maqam = "Bayati";
    p.tonic = 2;
    p.maqamCaption = "Maqam Bayati on D";
    p.keySignature = "E- Bb";
    p.rhythm = &baladi();
    p.teachingNote = "Original etude: Jins Bayati on D, up to the octave, a short visit to Saba on D";
    p.sections = {
        {"Intro", 108, 1, "", "darbuka alone", "R"},
        {"A", 108, 2, "", "",
         "D3/8 E-3 F3 G3 A3/4 G3/8 F3 | E-3/8 F3 G3 F3 E-3/4 D3 | F3/8 G3 A3 Bb3 A3 G3 F3 E-3 | D3/4 E-3/8 F3 D3/2"},
        {"B", 108, 2, "", "",
         "A3/8 Bb3 C4 D4 C4/4 Bb3/8 A3 | Bb3/8 A3 G3 A3 Bb3/4 A3 | G3/8 A3 Bb3 A3 G3 F3 E-3 F3 | G3/4 F3/8 E-3 D3/2"},
        {"C", 100, 1, "Saba/2", "Saba on D",
         "D3/8 E-3 F3 Gb3 F3/4 E-3 | F3/8 Gb3 A3 Gb3 F3/4 E-3/8 D3 | E-3/8 F3 Gb3 A3 Bb3/4 A3/8 Gb3 | F3/8 E-3 D3 E-3 D3/2"},
        {"A'", 108, 1, "Bayati/2", "Bayati on D",
         "D3/8 F3 A3 D4 C4/4 Bb3/8 A3 | G3/8 A3 Bb3 G3 A3/2 | G3/8 F3 E-3 F3 G3/4 F3/8 E-3 | D3/2. r/4"},
        {"Coda", 88, 1, "", "", "E-3/8 F3 G3 F3 E-3/4 C3 | D3/1"},
    };
    return p;
}

Piece bayatiStudy()
{
    Piece p;
    p.folder = "bayati";
    p.fileName = "bayati-study.mid";
    p.title = "Bayati Study";
    p.maqam = "Bayati";
    p.tonic = 2;
    p.maqamCaption = "Maqam Bayati on D";
    p.keySignature = "E- Bb";
    p.rhythm = &malfuf();
    p.teachingNote = "Exercise: short phrases over Malfuf, the half-flat E on every turn back to D";
    p.sections = {
        {"Intro", 80, 1, "", "darbuka alone", "R"},
        {"A", 80, 2, "", "",
         "D3/8 E-3 F3 E-3 | D3/8 E-3 F3 G3 | A3/4 G3/8 F3 | E-3/8 F3 D3/4 |"
         "F3/8 G3 A3 Bb3 | C4/4 Bb3/8 A3 | G3/8 A3 F3 E-3 | D3/2"},
        {"B", 80, 2, "", "",
         "A3/8 Bb3 C4 D4 | C4/8 Bb3 A3/4 | Bb3/8 A3 G3 A3 | Bb3/4 A3 |"
         "G3/8 F3 E-3 F3 | G3/8 A3 G3/4 | F3/8 E-3 D3 C3 | D3/2"},
        {"Coda", 72, 1, "", "", "E-3/8 F3 E-3 C3 | D3/2"},
    };
    return p;
}

Piece sabaLament()
{
    Piece p;
    p.folder = "saba";
    p.fileName = "saba-lament.mzf";
    p.title = "Saba Lament";
    p.maqam = "Saba";
    p.tonic = 2;
    p.maqamCaption = "Maqam Saba on D";
    p.keySignature = "E- Bb";
    p.rhythm = &wahda();
    p.teachingNote = "Original etude: the narrow Saba tetrachord D E half-flat F G flat, then up to D flat";
    p.sections = {
        {"Intro", 84, 1, "", "darbuka alone", "R"},
        {"A", 84, 2, "", "",
         "D3/4 E-3/8 F3 Gb3/2 | F3/8 Gb3 F3 E-3 D3/2 | D3/8 E-3 F3 Gb3 A3/4 Gb3/8 F3 | E-3/4 F3/8 E-3 D3/2"},
        {"B", 84, 2, "", "",
         "Gb3/8 A3 Bb3 C4 Db4/4 C4/8 Bb3 | A3/8 Bb3 A3 Gb3 A3/2 | Bb3/8 A3 Gb3 F3 Gb3/4 E-3/8 F3 | Gb3/8 F3 E-3 F3 D3/2"},
        {"C", 96, 1, "", "a little faster",
         "D3/16 E-3 F3 Gb3 A3/4 Gb3/8 F3 E-3 D3 | E-3/8 F3 Gb3 F3 E-3/4 D3 | F3/8 Gb3 A3 Bb3 C4/4 Bb3/8 A3 | Gb3/8 F3 E-3 D3 E-3/2"},
        {"Coda", 84, 1, "", "", "Gb3/4 F3/8 E-3 F3/4 E-3 | D3/1"},
    };
    return p;
}

}  // namespace

std::vector<Piece> bayatiFamilyPieces()
{
    return {bayatiDance(), bayatiStudy(), sabaLament()};
}

}  // namespace tarabix::samples
