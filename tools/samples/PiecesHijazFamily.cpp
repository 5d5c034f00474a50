// Hijaz and Nakriz: the augmented second (E flat to F sharp, or E flat to F sharp over C).
// Melodies are written at sounding pitch; "|" separates bars.
#include "tools/samples/SamplePiece.h"

namespace tarabix::samples {

namespace {

Piece hijazSaidi()
{
    Piece p;
    p.folder = "hijaz";
    p.fileName = "hijaz-saidi.mzf";
    p.title = "Hijaz Sa'idi";
    p.maqam = "Hijaz";
    p.tonic = 2;
    p.maqamCaption = "Maqam Hijaz on D";
    p.keySignature = "Eb Bb";
    p.rhythm = &saidi();
    p.teachingNote = "Original etude: Jins Hijaz on D; B half-flat going up, B flat coming down; a turn to Rast on G";
    p.sections = {
        {"Intro", 100, 1, "", "darbuka alone", "R"},
        {"A", 100, 2, "", "",
         "D3/8 Eb3 F#3 G3 A3/4 G3/8 F#3 | Eb3/8 F#3 G3 F#3 Eb3/4 D3 | F#3/8 G3 A3 B-3 C4/4 B-3/8 A3 | G3/8 F#3 Eb3 F#3 D3/2"},
        {"B", 100, 2, "", "",
         "G3/8 A3 B-3 C4 D4/4 C4/8 B-3 | C4/8 D4 Eb4 D4 C4/4 Bb3 | A3/8 Bb3 A3 G3 F#3/4 G3/8 A3 | G3/8 F#3 Eb3 F#3 D3/2"},
        {"C", 92, 1, "Rast/7", "Rast on G",
         "G3/4 A3/8 B-3 C4/4 D4/8 E-4 | D4/8 C4 B-3 C4 D4/4 C4/8 B-3 | A3/8 B-3 C4 B-3 A3/4 G3 | A3/8 B-3 A3 F3 G3/2"},
        {"A'", 100, 1, "Hijaz/2", "Hijaz on D",
         "D4/8 C4 Bb3 A3 G3/4 F#3/8 G3 | A3/8 G3 F#3 Eb3 F#3/2 | G3/8 F#3 Eb3 D3 Eb3/4 F#3/8 G3 | F#3/8 Eb3 D3 Eb3 D3/2"},
        {"Coda", 80, 1, "", "", "Eb3/4 F#3/8 Eb3 D3/4 C3 | D3/1"},
    };
    return p;
}

Piece nakrizBaladi()
{
    Piece p;
    p.folder = "nakriz";
    p.fileName = "nakriz-baladi.mzf";
    p.title = "Nakriz Baladi";
    p.maqam = "Nakriz";
    p.tonic = 0;
    p.maqamCaption = "Maqam Nakriz on C";
    p.keySignature = "Eb Bb";
    p.rhythm = &baladi();
    p.teachingNote = "Original etude: Jins Nakriz on C (E flat, F sharp), Nahawand on C in the middle";
    p.sections = {
        {"Intro", 100, 1, "", "darbuka alone", "R"},
        {"A", 100, 2, "", "",
         "C3/8 D3 Eb3 F#3 G3/4 F#3/8 Eb3 | D3/8 Eb3 F#3 Eb3 D3/4 C3 | G3/8 A3 Bb3 C4 Bb3/4 A3/8 G3 | F#3/8 G3 Eb3 D3 C3/2"},
        {"B", 100, 2, "", "",
         "G3/8 A3 Bb3 A3 G3/4 F#3/8 G3 | A3/8 Bb3 C4 D4 C4/4 Bb3 | A3/8 G3 F#3 G3 A3/4 G3/8 F#3 | Eb3/8 F#3 Eb3 D3 C3/2"},
        {"C", 92, 1, "Nahawand/0", "Nahawand on C",
         "C3/8 D3 Eb3 F3 G3/4 F3/8 Eb3 | F3/8 G3 Ab3 G3 F3/4 Eb3 | D3/8 Eb3 F3 Eb3 D3/4 B2 | C3/8 D3 Eb3 F3 G3/2"},
        {"A'", 100, 1, "Nakriz/0", "Nakriz on C",
         "G3/8 F#3 Eb3 F#3 G3/4 A3/8 Bb3 | C4/8 Bb3 A3 G3 F#3/4 Eb3 | D3/8 Eb3 F#3 G3 F#3/4 Eb3/8 D3 | C3/2. r/4"},
        {"Coda", 80, 1, "", "", "D3/8 Eb3 F#3 Eb3 D3/4 Bb2 | C3/1"},
    };
    return p;
}

}  // namespace

std::vector<Piece> hijazFamilyPieces()
{
    return {hijazSaidi(), nakrizBaladi()};
}

}  // namespace tarabix::samples
