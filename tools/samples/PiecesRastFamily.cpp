// Rast, Sikah and Huzam: the family of the half-flat E. "E-3" is E half-flat below middle C: the
// note sounds 50 cents under E3. Melodies are written at sounding pitch; "|" separates bars.
#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

namespace {

Piece samaiRast()
{
    Piece p;
    p.folder = "rast";
    p.fileName = "samai-rast.mzf";
    p.title = "Sama'i Rast";
    p.maqam = "Rast";
    p.tonic = 0;
    p.maqamCaption = "Maqam Rast on C";
    p.keySignature = "E- B-";
    p.rhythm = &samaiThaqil();
    p.teachingNote = "Original etude: Jins Rast on C and on G, B flat on the way down, a visit to Bayati on D";
    p.sections = {
        {"Intro", 100, 1, "", "darbuka alone", "R"},
        {"A", 100, 2, "", "",
         "C3/4. D3/8 E-3/4 F3/8 G3 F3 E-3 | D3/4 E-3/8 F3 G3/4. F3/8 E-3 D3 |"
         "E-3/8 F3 G3 A3 B-3/4 A3/8 G3 F3 E-3 | D3/8 E-3 D3 C3 B-2 C3/4. r/4"},
        {"B", 100, 2, "", "",
         "G3/4. A3/8 B-3/4 C4/8 D4 C4 B-3 | C4/4 D4/8 E-4 D4/4. C4/8 B-3 A3 |"
         "G3/8 A3 Bb3 A3 G3/4 F3/8 E-3 F3 G3 | A3/8 G3 F3 E-3 D3/4 C3/2"},
        {"C", 92, 1, "Bayati/2", "Bayati on D",
         "D3/4. E-3/8 F3/4 G3/8 A3 G3 F3 | G3/4 A3/8 Bb3 C4/4. Bb3/8 A3 G3 |"
         "A3/8 G3 F3 G3 A3/4 G3/8 F3 E-3 F3 | E-3/8 F3 E-3 D3 C3 D3/4. r/4"},
        {"A'", 100, 1, "Rast/0", "Rast on C",
         "C3/4. D3/8 E-3/4 F3/8 G3 A3 B-3 | C4/4. B-3/8 A3/4 G3/8 F3 E-3 D3 |"
         "E-3/8 F3 G3 F3 E-3/4 D3/8 C3 D3 E-3 | D3/4 C3/2. r/4"},
        {"Coda", 80, 1, "", "", "C3/1 r/4"},
    };
    return p;
}

Piece rastStudy()
{
    Piece p;
    p.folder = "rast";
    p.fileName = "rast-scale-study.mid";
    p.title = "Rast Scale Study";
    p.maqam = "Rast";
    p.tonic = 0;
    p.maqamCaption = "Maqam Rast on C";
    p.keySignature = "E- B-";
    p.rhythm = &maqsum();
    p.teachingNote = "Exercise: the scale in groups of four up, with B half-flat; down with B flat; then in thirds";
    p.sections = {
        {"Intro", 96, 1, "", "darbuka alone", "R"},
        {"A", 96, 2, "", "",
         "C3/8 D3 E-3 C3 D3 E-3 F3 D3 | E-3/8 F3 G3 E-3 F3 G3 A3 F3 | G3/8 A3 B-3 G3 A3 B-3 C4 A3 | B-3/8 C4 D4 B-3 C4/2"},
        {"B", 96, 2, "", "",
         "C4/8 Bb3 A3 C4 Bb3 A3 G3 Bb3 | A3/8 G3 F3 A3 G3 F3 E-3 G3 | F3/8 E-3 D3 F3 E-3 D3 C3 E-3 | D3/8 E-3 D3 B-2 C3/2"},
        {"C", 104, 1, "", "in thirds",
         "C3/8 E-3 D3 F3 E-3 G3 F3 A3 | G3/8 B-3 A3 C4 B-3/4 G3 | C4/8 A3 Bb3 G3 A3 F3 G3 E-3 | F3/8 D3 E-3 C3 D3/2"},
        {"Coda", 84, 1, "", "", "E-3/8 F3 E-3 D3 C3/4 B-2 | C3/1"},
    };
    return p;
}

Piece sikahMeditation()
{
    Piece p;
    p.folder = "sikah";
    p.fileName = "sikah-meditation.mzf";
    p.title = "Sikah Meditation";
    p.maqam = "Sikah";
    p.tonic = 4;
    p.maqamCaption = "Maqam Sikah on E half-flat";
    p.keySignature = "E- B-";
    p.rhythm = &wahda();
    p.teachingNote = "Original etude: resting on the half-flat E; a turn to Rast on C before coming home";
    p.sections = {
        {"Intro", 80, 1, "", "darbuka alone", "R"},
        {"A", 80, 2, "", "",
         "E-3/4 F3/8 G3 F3/4 E-3 | D3/8 E-3 F3 G3 A3/4 G3/8 F3 | G3/8 F3 E-3 F3 G3/4 A3/8 G3 | F3/8 E-3 D3 F3 E-3/2"},
        {"B", 80, 2, "", "",
         "G3/8 A3 B-3 C4 B-3/4 A3 | B-3/8 C4 D4 C4 B-3/4 A3/8 G3 | A3/8 G3 F3 G3 A3/4 G3/8 F3 | G3/8 F3 E-3 D3 E-3/2"},
        {"C", 88, 1, "Rast/0", "Rast on C",
         "C3/8 D3 E-3 F3 G3/4 F3/8 E-3 | D3/8 E-3 F3 E-3 D3/4 C3 | E-3/8 F3 G3 A3 B-3/4 A3/8 G3 | F3/8 E-3 D3 E-3 F3/4 E-3"},
        {"A'", 80, 1, "Sikah/4", "Sikah on E half-flat",
         "G3/8 F3 E-3 F3 G3/4 F3/8 E-3 | D3/4 E-3/8 F3 E-3/4 D3 | C3/8 D3 E-3 F3 E-3/2"},
        {"Coda", 66, 1, "", "", "E-3/1"},
    };
    return p;
}

Piece huzamSong()
{
    Piece p;
    p.folder = "huzam";
    p.fileName = "huzam-song.mzf";
    p.title = "Huzam Song";
    p.maqam = "Huzam";
    p.tonic = 4;
    p.maqamCaption = "Maqam Huzam on E half-flat";
    p.keySignature = "E- Ab";
    p.rhythm = &maqsum();
    p.teachingNote = "Original etude: Sikah on E half-flat, Hijaz on G above it, and a section in Hijaz on G";
    p.sections = {
        {"Intro", 96, 1, "", "darbuka alone", "R"},
        {"A", 96, 2, "", "",
         "E-3/4 F3/8 G3 Ab3/4 G3 | F3/8 G3 Ab3 B3 C4/4 B3/8 Ab3 | G3/8 Ab3 G3 F3 E-3/4 F3/8 G3 | F3/8 E-3 D3 F3 E-3/2"},
        {"B", 96, 2, "", "",
         "B3/8 C4 D4 E-4 D4/4 C4/8 B3 | C4/8 B3 Ab3 B3 C4/4 Ab3 | G3/8 Ab3 B3 Ab3 G3/4 F3/8 G3 | Ab3/8 G3 F3 D3 E-3/2"},
        {"C", 88, 1, "Hijaz/7", "Hijaz on G",
         "G3/8 Ab3 B3 C4 D4/4 C4/8 B3 | Ab3/8 B3 C4 B3 Ab3/2 | G3/8 Ab3 B3 C4 B3/4 Ab3/8 G3 | F3/8 Ab3 G3 F3 G3/2"},
        {"A'", 96, 1, "Huzam/4", "Huzam on E half-flat",
         "E-3/8 F3 G3 Ab3 B3/4 Ab3/8 G3 | F3/8 G3 Ab3 G3 F3/4 E-3 | D3/8 E-3 F3 G3 Ab3/4 G3/8 F3 | E-3/2. r/4"},
        {"Coda", 76, 1, "", "", "G3/8 F3 E-3 D3 C3/4 D3 | E-3/1"},
    };
    return p;
}

}  // namespace

std::vector<Piece> rastFamilyPieces()
{
    return {samaiRast(), rastStudy(), sikahMeditation(), huzamSong()};
}

}  // namespace tarabix::samples
