#include "settings/UserSettings.h"

#include "settings/TextNumbers.h"

#include <QCryptographicHash>
#include <QSettings>
#include <QString>

namespace tarabix {
namespace {

struct SettingRow {
    Setting setting;
    const char* key;
    const char* defaultText;
};

// Every key with its built-in value, in the order the start-up load reads them.
constexpr SettingRow kSettings[] = {
    {Setting::ApproxQrt, "approxQrt", "True"},
    {Setting::PlayMouseMove, "PlayMouseMove", "False"},
    {Setting::MkbPlayHilite, "MKB-PlayHilite", "True"},
    {Setting::MkbDoubling, "MKB-Doubling", "False"},
    {Setting::MkbDblOn1MS, "MKB-dblOn1MS", "5"},
    {Setting::MkbDblOffMS, "MKB-dblOffMS", "2"},
    {Setting::NoteNamesType, "NoteNamesType", "0"},
    {Setting::NotesPresRestNoMaqam, "NotesPres_Rest_NoMaqam", "1"},
    {Setting::NotesPresPlayNoMaqam, "NotesPres_Play_NoMaqam", "1"},
    {Setting::NotesPresRestMaqam, "NotesPres_Rest_Maqam", "1"},
    {Setting::NotesPresPlayMaqam, "NotesPres_Play_Maqam", "1"},
    {Setting::UdOrient, "UdOrient", "1"},
    {Setting::TuningICateg, "TuningICateg", "0"},
    // The built-in synthesizer's SoundFont chosen by the learner; empty: the system's.
    {Setting::SoundFontFile, "SoundFont", ""},
    // The lowest latency that plays without dropouts on the common sound servers (the built-in
    // synthesizer's own default, kDefaultSynthLatencyMs).
    {Setting::SynthLatencyMS, "SynthLatencyMS", "20"},
    // The coming notes of a piece: off (LookAhead's choices), and the time of "within"
    // (LookAhead::kDefaultMs).
    {Setting::LookAheadChoice, "LookAhead", "0"},
    {Setting::LookAheadMS, "LookAheadMS", "1500"},
};

constexpr bool tableFollowsEnum()
{
    for (size_t i = 0; i < std::size(kSettings); ++i)
        if (static_cast<size_t>(kSettings[i].setting) != i)
            return false;
    return true;
}
static_assert(tableFollowsEnum(), "kSettings rows must follow the order of Setting");

constexpr const char* kOrganisation = "Tarabix";
constexpr const char* kApplication = "Tarabix";
constexpr const char* kGroup = "options";

const SettingRow& row(Setting setting)
{
    return kSettings[static_cast<size_t>(setting)];
}

QString storeKey(Setting setting)
{
    return QString::fromLatin1(kGroup) + u'/' + QString::fromLatin1(row(setting).key);
}

}  // namespace

UserSettings::UserSettings()
    : m_store(std::make_unique<QSettings>(QString::fromLatin1(kOrganisation), QString::fromLatin1(kApplication)))
{
}

UserSettings::UserSettings(std::unique_ptr<QSettings> store)
    : m_store(std::move(store))
{
}

UserSettings::~UserSettings() = default;

std::string_view UserSettings::keyName(Setting setting)
{
    return row(setting).key;
}

bool UserSettings::boolValue(Setting setting) const
{
    const QString text = m_store->value(storeKey(setting), QString::fromLatin1(row(setting).defaultText)).toString();
    if (const auto value = textToBool(text.toStdString()))
        return *value;
    return textToBool(row(setting).defaultText).value_or(false);
}

int32_t UserSettings::intValue(Setting setting) const
{
    const QString text = m_store->value(storeKey(setting), QString::fromLatin1(row(setting).defaultText)).toString();
    if (const auto value = textToInt32(text.toStdString()))
        return *value;
    return textToInt32(row(setting).defaultText).value_or(0);
}

void UserSettings::setBool(Setting setting, bool value)
{
    m_store->setValue(storeKey(setting), value ? QStringLiteral("True") : QStringLiteral("False"));
    m_store->sync();
}

void UserSettings::setInt(Setting setting, int32_t value)
{
    m_store->setValue(storeKey(setting), QString::number(value));
    m_store->sync();
}

std::string UserSettings::textValue(Setting setting) const
{
    return m_store->value(storeKey(setting), QString::fromLatin1(row(setting).defaultText)).toString().toStdString();
}

void UserSettings::setText(Setting setting, const std::string& value)
{
    m_store->setValue(storeKey(setting), QString::fromStdString(value));
    m_store->sync();
}

StartupOptions UserSettings::loadStartup() const
{
    StartupOptions options;
    options.approxQrt = boolValue(Setting::ApproxQrt);
    options.playMouseMove = boolValue(Setting::PlayMouseMove);
    options.mkbPlayHilite = boolValue(Setting::MkbPlayHilite);
    // Without approximated quarter tones the key-play highlight stays off, whatever was stored.
    if (!options.approxQrt)
        options.mkbPlayHilite = false;
    options.mkbDoubling = boolValue(Setting::MkbDoubling);
    options.mkbDblOn1MS = intValue(Setting::MkbDblOn1MS);
    options.mkbDblOffMS = intValue(Setting::MkbDblOffMS);
    return options;
}

namespace {

// Each field of the note presentation with the key that keeps it.
struct PresentationKey {
    Setting setting;
    int32_t NotePresentation::*field;
};

constexpr PresentationKey kPresentationKeys[] = {
    {Setting::NoteNamesType, &NotePresentation::nameSystem},
    {Setting::NotesPresRestNoMaqam, &NotePresentation::restNoMaqam},
    {Setting::NotesPresPlayNoMaqam, &NotePresentation::playNoMaqam},
    {Setting::NotesPresRestMaqam, &NotePresentation::restMaqam},
    {Setting::NotesPresPlayMaqam, &NotePresentation::playMaqam},
};

}  // namespace

NotePresentation UserSettings::notePresentation() const
{
    NotePresentation presentation;
    for (const PresentationKey& key : kPresentationKeys)
        presentation.*key.field = intValue(key.setting);
    return presentation;
}

void UserSettings::setNotePresentation(const NotePresentation& presentation)
{
    const NotePresentation stored = notePresentation();
    for (const PresentationKey& key : kPresentationKeys) {
        if (presentation.*key.field != stored.*key.field)
            setInt(key.setting, presentation.*key.field);
    }
}

LookAhead UserSettings::lookAhead() const
{
    // Whatever cannot be read is off: a damaged store never shows marks the learner did not ask for.
    const std::optional<int32_t> choice = textToInt32(textValue(Setting::LookAheadChoice));
    const std::optional<int32_t> ms = textToInt32(textValue(Setting::LookAheadMS));
    if (!ms)
        return LookAhead{};
    return LookAhead{choice.value_or(LookAhead::kOff), *ms}.checked();
}

void UserSettings::setLookAhead(const LookAhead& chosen)
{
    const LookAhead stored = lookAhead();
    if (chosen.choice != stored.choice)
        setInt(Setting::LookAheadChoice, chosen.choice);
    if (chosen.withinMs != stored.withinMs)
        setInt(Setting::LookAheadMS, chosen.withinMs);
}

namespace {

constexpr const char* kPathKey = "Path";  // for a reader of the store: which piece the group is

QString pieceGroup(const std::string& piecePath)
{
    const QByteArray hash = QCryptographicHash::hash(QByteArray::fromStdString(piecePath), QCryptographicHash::Sha1);
    return QStringLiteral("piece-") + QString::fromLatin1(hash.toHex());
}

}  // namespace

std::map<std::string, int32_t> UserSettings::pieceNumbers(const std::string& piecePath) const
{
    std::map<std::string, int32_t> numbers;
    m_store->beginGroup(pieceGroup(piecePath));
    for (const QString& key : m_store->childKeys()) {
        if (key == QLatin1String(kPathKey))
            continue;
        if (const auto value = textToInt32(m_store->value(key).toString().toStdString()))
            numbers[key.toStdString()] = *value;
    }
    m_store->endGroup();
    return numbers;
}

void UserSettings::setPieceNumbers(const std::string& piecePath, const std::map<std::string, int32_t>& numbers)
{
    m_store->remove(pieceGroup(piecePath));
    if (numbers.empty())
        return;
    m_store->beginGroup(pieceGroup(piecePath));
    m_store->setValue(QLatin1String(kPathKey), QString::fromStdString(piecePath));
    for (const auto& [key, value] : numbers)
        m_store->setValue(QString::fromStdString(key), QString::number(value));
    m_store->endGroup();
}

}  // namespace tarabix
