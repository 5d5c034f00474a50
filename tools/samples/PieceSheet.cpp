#include "tools/samples/PieceSheet.h"

#include "base/ReadWholeFile.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace tarabix::samples {

namespace {

std::string quoted(const std::string& text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    return out + "\"";
}

// "E- B-" -> the engraver's key alterations: steps from C and their alteration in whole tones.
std::string keyAlterations(const std::string& keySignature)
{
    static constexpr std::string_view letters = "CDEFGAB";
    std::istringstream in(keySignature);
    std::string token;
    std::string out;
    while (in >> token) {
        if (token.size() != 2 || letters.find(token[0]) == std::string_view::npos)
            continue;
        const char* alteration = token[1] == '-' ? "SEMI-FLAT" : token[1] == '+' ? "SEMI-SHARP" : token[1] == 'b' ? "FLAT" : "SHARP";
        out += "(" + std::to_string(letters.find(token[0])) + " . ," + alteration + ") ";
    }
    return out;
}

}  // namespace

std::string sheetSource(const ParsedPiece& parsed)
{
    const Piece& piece = *parsed.piece;
    const Rhythm& rhythm = *piece.rhythm;
    std::ostringstream ly;
    ly << "\\version \"2.24.0\"\n"
       << "\\include \"arabic.ly\"\n"
       << "#(set-global-staff-size 22)\n"
       << "\\header {\n"
       << "  title = " << quoted(piece.title) << "\n"
       << "  subtitle = " << quoted(piece.maqamCaption + " - " + rhythm.name + " (" + rhythm.pattern + ")") << "\n"
       << "  subsubtitle = " << quoted(piece.teachingNote) << "\n"
       << "  tagline = ##f\n}\n"
       << "\\paper { indent = 0 line-width = 175\\mm ragged-last = ##t }\n"
       << "\\score {\n  \\new Staff {\n"
       << "    \\clef \"treble_8\" \\time " << rhythm.num << "/" << rhythm.den << "\n"
       << "    \\set Staff.keyAlterations = #`(" << keyAlterations(piece.keySignature) << ")\n"
       << "    \\set Staff.extraNatural = ##f\n";
    if (!rhythm.beamGroups.empty())
        ly << "    \\set Timing.beamExceptions = #'() \\set Timing.beatStructure = " << rhythm.beamGroups << "\n";
    for (size_t s = 0; s < piece.sections.size(); ++s) {
        const Section& section = piece.sections[s];
        if (s == 0 || section.bpm != piece.sections[s - 1].bpm)
            ly << "    \\tempo 4 = " << section.bpm << "\n";
        std::string mark = "\\box " + quoted(section.label);
        if (!section.sheetNote.empty())
            mark += " \\italic " + quoted(section.sheetNote);
        ly << "    \\mark \\markup { " << mark << " }\n    ";
        if (section.repeats > 1)
            ly << "\\repeat volta " << section.repeats << " { ";
        for (const MelodyNote& note : parsed.sections[s])
            ly << note.lily << ' ';
        if (section.repeats > 1)
            ly << "}";
        ly << "\n";
    }
    ly << "    \\bar \"|.\"\n  }\n  \\layout { }\n}\n";
    return ly.str();
}

bool engraveSheet(const std::string& source, const std::filesystem::path& workDir, const std::string& baseName,
                  std::string& png, std::string& error)
{
    std::filesystem::create_directories(workDir);
    const std::filesystem::path lyPath = workDir / (baseName + ".ly");
    std::ofstream(lyPath) << source;
    const std::string command = "lilypond -s -dbackend=eps -dresolution=160 --png -dcrop -o '" +
                                (workDir / baseName).string() + "' '" + lyPath.string() + "'";
    if (std::system(command.c_str()) != 0) {
        error = "LilyPond failed on " + lyPath.string();
        return false;
    }
    if (readWholeFile((workDir / (baseName + ".cropped.png")).string(), png) != 0 || png.empty()) {
        error = "LilyPond wrote no picture for " + lyPath.string();
        return false;
    }
    return true;
}

}  // namespace tarabix::samples
