#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarabix::samples {

// A darbuka rhythm: one bar of strokes, one character per step of 1/unit note:
// 'D' doum (the low centre stroke), 'T' tek (the sharp rim stroke), 'k' a soft ornamental tek,
// '.' silence. The fill is played in the last bar before a new section.
struct Rhythm {
    std::string name;  // as printed on the sheet: "Maqsum", "Sama'i thaqil" ...
    int32_t num = 4;
    int32_t den = 4;
    int32_t unit = 8;
    std::string pattern;
    std::string fill;
    std::string beamGroups;  // eighths beamed together on the sheet, e.g. "3,2,2,3"; empty: the usual
};

// A stretch of the melody with its own tempo, played `repeats` times (a repeat sign on the sheet).
struct Section {
    std::string label;  // rehearsal mark on the sheet: "A", "B" ...
    int32_t bpm = 100;  // quarter notes a minute
    int32_t repeats = 1;
    // A "Q:" marker sent where the section starts, as "name/tonic" (e.g. "Nahawand/7"); empty
    // when the maqam does not change here. sheetNote says the same for the reader of the sheet.
    std::string maqamChange;
    std::string sheetNote;
    std::string melody;  // see parseMelody
};

struct Piece {
    std::string folder;  // under samples/, one per maqam: "agam", "rast" ...
    std::string fileName;  // "zoroony.mzf" or "rast-study.mid"
    std::string title;
    std::string maqam;  // name as in maqams.ini
    int32_t tonic = 0;  // pitch class 0..11 of the qarar
    std::string maqamCaption;  // "Maqam Rast on C"
    std::string keySignature;  // altered steps for the sheet, e.g. "E- B-" (none: "")
    const Rhythm* rhythm = nullptr;
    int32_t program = 24;  // General MIDI program of the oud line, 0-based
    std::vector<Section> sections;
    std::string teachingNote;  // one line under the title
};

const Rhythm& maqsum();
const Rhythm& baladi();
const Rhythm& saidi();
const Rhythm& wahda();
const Rhythm& samaiThaqil();
const Rhythm& malfuf();

// The pieces by maqam family; allPieces() is every piece the generator writes, in order.
std::vector<Piece> ajamFamilyPieces();
std::vector<Piece> rastFamilyPieces();
std::vector<Piece> bayatiFamilyPieces();
std::vector<Piece> hijazFamilyPieces();
std::vector<Piece> allPieces();

}  // namespace tarabix::samples
