// Ajam, Nahawand and Kurd: the maqams without quarter tones. Melodies are written at sounding
// pitch (C3 is the oud's open fifth course); "|" separates bars.
#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

namespace {

Piece zoroony()
{
    Piece p;
    p.folder = "agam";
    p.fileName = "zoroony.mzf";
    p.title = "Zoroony";
    p.maqam = "Ajam";
    p.tonic = 0;
    p.maqamCaption = "Maqam Ajam on C";
    p.rhythm = &maqsum();
    p.teachingNote = "Original etude: Jins Ajam on C and on F, a visit to Jins Nahawand on G";
    p.sections = {
        {"Intro", 104, 1, "", "darbuka alone", "R"},
        {"A", 104, 2, "", "",
         "C3/8 D3 E3 F3 G3/4 E3/8 F3 | G3/8 A3 G3 F3 E3/4 D3 | E3/8 F3 G3 A3 B3 C4 B3 A3 | G3/4 E3/8 D3 C3/2 |"
         "C4/4 B3/8 A3 G3/4 A3/8 B3 | C4/8 D4 C4 B3 A3/4 G3 | F3/8 G3 A3 G3 F3 E3 D3 E3 | C3/2. r/4"},
        {"B", 96, 1, "Nahawand/7", "Nahawand on G",
         "G3/8 A3 Bb3 C4 D4/4 C4/8 Bb3 | A3/8 Bb3 A3 G3 A3/2 | D4/8 Eb4 D4 C4 Bb3 C4 A3 Bb3 | G3/2. r/4 |"
         "G3/8 Bb3 D4 Bb3 C4/4 A3/8 F#3 | G3/4 A3 Bb3/8 A3 G3/4 | F3/8 G3 A3 Bb3 C4/4 Bb3/8 A3 | G3/2 F3/4 E3/8 D3"},
        {"A'", 104, 1, "Ajam/0", "Ajam on C",
         "C3/8 E3 G3 C4 B3/4 G3/8 A3 | B3/8 C4 D4 C4 B3/4 A3 | G3/8 F3 E3 F3 G3/4 D3/8 E3 | C3/2 G3/4 E3/8 D3"},
        {"Coda", 84, 1, "", "", "C3/8 D3 E3 F3 G3/4 B2 | C3/1"},
    };
    return p;
}

Piece nahawandSong()
{
    Piece p;
    p.folder = "nahawand";
    p.fileName = "nahawand-song.mzf";
    p.title = "Nahawand Song";
    p.maqam = "Nahawand";
    p.tonic = 0;
    p.maqamCaption = "Maqam Nahawand on C";
    p.keySignature = "Bb Eb Ab";
    p.rhythm = &maqsum();
    p.teachingNote = "Original etude: B natural going up (Hijaz on G), B flat coming down; a turn to Ajam on E flat";
    p.sections = {
        {"Intro", 112, 1, "", "darbuka alone", "R"},
        {"A", 112, 2, "", "",
         "C3/8 D3 Eb3 F3 G3/4 F3/8 Eb3 | D3/8 Eb3 F3 Eb3 D3/4 C3 | G3/8 Ab3 B3 C4 D4/4 C4/8 B3 | C4/8 Bb3 Ab3 F3 G3/2"},
        {"B", 112, 2, "", "",
         "G3/8 Ab3 G3 F3 Eb3/4 F3/8 G3 | Ab3/8 G3 F3 Eb3 D3/4 Eb3/8 F3 | Eb3/8 D3 C3 D3 Eb3/4 B2 | C3/2. r/4"},
        {"C", 104, 1, "Ajam/3", "Ajam on E flat",
         "Eb3/8 F3 G3 Ab3 Bb3/4 G3/8 Ab3 | Bb3/8 C4 D4 C4 Bb3/4 Ab3 | G3/8 Ab3 Bb3 Ab3 G3 F3 Eb3 F3 | G3/4 F3/8 D3 Eb3/2"},
        {"A'", 112, 1, "Nahawand/0", "Nahawand on C",
         "C3/8 Eb3 G3 C4 B3/4 G3/8 Ab3 | B3/8 C4 D4 Eb4 D4/4 C4 | Bb3/8 Ab3 G3 F3 Eb3/4 D3/8 Eb3 | F3/8 Eb3 D3 B2 C3/2"},
        {"Coda", 90, 1, "", "", "G3/4 F3/8 Eb3 D3/4 B2 | C3/1"},
    };
    return p;
}

Piece kurdDance()
{
    Piece p;
    p.folder = "kurd";
    p.fileName = "kurd-dance.mzf";
    p.title = "Kurd Dance";
    p.maqam = "Kurd";
    p.tonic = 2;
    p.maqamCaption = "Maqam Kurd on D";
    p.keySignature = "Bb Eb";
    p.rhythm = &maqsum();
    p.teachingNote = "Original etude: Jins Kurd on D, Jins Nahawand on G in the middle section";
    p.sections = {
        {"Intro", 96, 1, "", "darbuka alone", "R"},
        {"A", 96, 2, "", "",
         "D3/8 Eb3 F3 G3 F3/4 Eb3 | D3/8 Eb3 F3 G3 A3/2 | Bb3/8 A3 G3 F3 G3/4 F3/8 Eb3 | F3/8 Eb3 D3 C3 D3/2"},
        {"B", 96, 2, "", "",
         "A3/8 Bb3 C4 D4 Eb4/4 D4/8 C4 | Bb3/8 C4 D4 C4 Bb3/4 A3 | G3/8 A3 Bb3 A3 G3/4 F3/8 Eb3 | F3/4 Eb3/8 C3 D3/2"},
        {"C", 88, 1, "Nahawand/7", "Nahawand on G",
         "G3/8 A3 Bb3 C4 D4/4 Eb4/8 D4 | C4/8 Bb3 A3 Bb3 C4/4 A3/8 F#3 | G3/8 A3 Bb3 A3 G3/4 F#3/8 G3 | A3/8 G3 F3 Eb3 D3/2"},
        {"A'", 96, 1, "Kurd/2", "Kurd on D",
         "D3/8 F3 A3 D4 C4/4 Bb3/8 A3 | G3/8 F3 G3 A3 Bb3/2 | A3/8 G3 F3 Eb3 F3/4 Eb3/8 D3 | Eb3/8 F3 Eb3 C3 D3/2"},
        {"Coda", 80, 1, "", "", "F3/4 Eb3/8 D3 C3/4 Eb3 | D3/1"},
    };
    return p;
}

}  // namespace

std::vector<Piece> ajamFamilyPieces()
{
    return {zoroony(), nahawandSong(), kurdDance()};
}

}  // namespace tarabix::samples
