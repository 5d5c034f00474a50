#pragma once

#include "settings/LookAhead.h"
#include "settings/NotePresentation.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

class QSettings;

namespace tarabix {

// The user settings the program keeps between runs, all in section "options".
enum class Setting {
    ApproxQrt,
    PlayMouseMove,
    MkbPlayHilite,
    MkbDoubling,
    MkbDblOn1MS,
    MkbDblOffMS,
    NoteNamesType,
    NotesPresRestNoMaqam,
    NotesPresPlayNoMaqam,
    NotesPresRestMaqam,
    NotesPresPlayMaqam,
    UdOrient,
    TuningICateg,
    SoundFontFile,
    SynthLatencyMS,
    LookAheadChoice,
    LookAheadMS,
};

// What the main window takes from the store when it starts.
struct StartupOptions {
    bool approxQrt = false;
    bool playMouseMove = false;
    bool mkbPlayHilite = false;
    bool mkbDoubling = false;
    int32_t mkbDblOn1MS = 0;
    int32_t mkbDblOffMS = 0;
};

// The one owner of the settings keys and their defaults. Values are stored as text ("True"/"False",
// decimal numbers) and written the moment they change, so a crash never loses a choice.
class UserSettings {
public:
    // The per-user store of organisation and application "Tarabix".
    UserSettings();
    // Any store, e.g. a QSettings over a temporary INI file in tests.
    explicit UserSettings(std::unique_ptr<QSettings> store);
    ~UserSettings();
    UserSettings(const UserSettings&) = delete;
    UserSettings& operator=(const UserSettings&) = delete;

    static std::string_view keyName(Setting setting);

    // A stored text that cannot be converted gives the setting's built-in default.
    bool boolValue(Setting setting) const;
    int32_t intValue(Setting setting) const;
    void setBool(Setting setting, bool value);
    void setInt(Setting setting, int32_t value);
    // Free text such as a file's path, kept as given.
    std::string textValue(Setting setting) const;
    void setText(Setting setting, const std::string& value);

    // Reads the start-up options in the order the window has always read them. A value that
    // cannot be converted keeps its default and the load goes on with the next key: one damaged
    // entry should not cost the learner every other choice.
    StartupOptions loadStartup() const;

    // How notes are shown, from its five keys; an unreadable value keeps its default alone.
    NotePresentation notePresentation() const;
    // Writes the keys whose value differs from what is stored now, so a key the learner never
    // changed stays out of the store as before.
    void setNotePresentation(const NotePresentation& presentation);

    // How far ahead the coming notes are shown, from its two keys; a value that cannot be read, or
    // a pair no control stands for (LookAhead::checked), is off. Written as the presentation is.
    LookAhead lookAhead() const;
    void setLookAhead(const LookAhead& chosen);

    // Read later in start-up, by the resources check.
    int32_t udOrient() const { return intValue(Setting::UdOrient); }
    int32_t tuningICateg() const { return intValue(Setting::TuningICateg); }
    // The built-in synthesizer's output latency in ms, as the learner chose it in the device dialog.
    int32_t synthLatencyMs() const { return intValue(Setting::SynthLatencyMS); }

    // Whole numbers kept for one piece, e.g. the practice room's loop, speed and ramp, under a
    // group of the piece's own (named after a hash of its path, which may hold any character).
    // Values that are no numbers are left out.
    std::map<std::string, int32_t> pieceNumbers(const std::string& piecePath) const;
    // Replaces what is kept for the piece; an empty map forgets the piece.
    void setPieceNumbers(const std::string& piecePath, const std::map<std::string, int32_t>& numbers);

private:
    std::unique_ptr<QSettings> m_store;
};

}  // namespace tarabix
