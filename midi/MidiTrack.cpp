#include "midi/MidiTrack.h"

#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "base/Text.h"
#include "midi/MidiBytes.h"
#include "midi/MidiError.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>

namespace tarabix {

namespace {

constexpr const char* kSource = "MidiTrack";

void checkIndex(int32_t i, size_t size)
{
    if (i < 0 || static_cast<size_t>(i) >= size)
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
}

uint8_t statusWithChannel(int base, uint8_t channel)
{
    if (base + channel > 255)
        throw MidiError(midierr::kOverflow, kSource);
    return static_cast<uint8_t>(base + channel);
}

// A decimal number such as "12", "-50", "+37.5" or "1e2"; nothing else (no "inf", no "nan").
std::optional<double> parseDecimal(std::string_view text)
{
    text = trim(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    const size_t first = !text.empty() && text.front() == '-' ? 1 : 0;
    if (text.size() <= first ||
        !(std::isdigit(static_cast<unsigned char>(text[first])) || text[first] == '.'))
        return std::nullopt;
    double value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

// A maqam marker's tonic: a number taken to the nearest 16-bit integer, halves to even.
std::optional<int32_t> parseTonic(std::string_view text)
{
    const std::optional<double> value = parseDecimal(text);
    if (!value)
        return std::nullopt;
    const double rounded = roundHalfEven(*value);
    if (rounded < -32768.0 || rounded > 32767.0)
        return std::nullopt;
    return static_cast<int32_t>(rounded);
}

}  // namespace

const MidiEvent& MidiTrack::trkEvents(int32_t i) const
{
    checkIndex(i, m_events.size());
    return m_events[static_cast<size_t>(i)];
}

MidiEvent& MidiTrack::trkEvents(int32_t i)
{
    checkIndex(i, m_events.size());
    return m_events[static_cast<size_t>(i)];
}

void MidiTrack::setTrkEvents(int32_t i, const MidiEvent& evt)
{
    checkIndex(i, m_events.size());
    m_events[static_cast<size_t>(i)] = evt;
}

void MidiTrack::setTrkNEvents(int32_t n)
{
    if (n < 0 || n > trkEventsArrSize())
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
    m_nEvents = n;
}

bool MidiTrack::trkChannels(int32_t channel) const
{
    checkIndex(channel, m_channels.size());
    return m_channels[static_cast<size_t>(channel)];
}

void MidiTrack::setTrkChannels(int32_t channel, bool on)
{
    checkIndex(channel, m_channels.size());
    m_channels.set(static_cast<size_t>(channel), on);
}

bool MidiTrack::trkActInstrs(int32_t program) const
{
    checkIndex(program, m_programs.size());
    return m_programs[static_cast<size_t>(program)];
}

void MidiTrack::setTrkActInstrs(int32_t program, bool on)
{
    checkIndex(program, m_programs.size());
    m_programs.set(static_cast<size_t>(program), on);
}

int32_t MidiTrack::trkNChannels() const
{
    return static_cast<int32_t>(m_channels.count());
}

std::string MidiTrack::lastMaqamMetaText() const
{
    for (int32_t i = m_nEvents - 1; i >= 0; --i) {
        const MidiEvent& e = m_events[static_cast<size_t>(i)];
        if (!e.isMeta(midimeta::kText))
            continue;
        const std::string_view text = std::string_view(e.eData).substr(1);
        if (text.size() < 2 || std::toupper(static_cast<unsigned char>(text[0])) != 'Q' || text[1] != ':')
            continue;
        const size_t slash = text.find('/', 3);
        if (slash == std::string_view::npos)
            continue;
        const std::optional<int32_t> tonic = parseTonic(text.substr(slash + 1));
        if (!tonic)
            return {};
        if (*tonic >= 0 && *tonic < 12)
            return std::string(text);
    }
    return {};
}

void MidiTrack::clear()
{
    m_events.clear();
    m_events.shrink_to_fit();
    m_nEvents = 0;
    trkName.clear();
    trkInstrument.clear();
    m_channels.reset();
    m_programs.reset();
}

void MidiTrack::copyFrom(const MidiTrack& other)
{
    if (&other == this)
        return;
    clear();
    m_channels = other.m_channels;
    m_programs = other.m_programs;
    m_events.reserve(other.m_events.size());
    for (const MidiEvent& e : other.events())
        addEvent(e);
}

MidiEvent& MidiTrack::nextSlot()
{
    if (m_nEvents == trkEventsArrSize())
        m_events.resize(m_events.size() + kGrowStep);  // the vector's capacity still grows geometrically
    return m_events[static_cast<size_t>(m_nEvents++)];
}

bool MidiTrack::noteBookkeeping(const MidiEvent& evt)
{
    if (evt.eType == MidiEvent::kChannelMessage && !evt.eData.empty()) {
        const auto status = static_cast<uint8_t>(evt.eData[0]);
        m_channels.set(static_cast<size_t>(statusChannel(status)));
        if (statusKind(status) == midistatus::kProgramChange) {
            const int program = evt.eData.size() > 1 ? static_cast<uint8_t>(evt.eData[1]) : -1;
            if (program < 0 || program > 127)
                return false;
            m_programs.set(static_cast<size_t>(program));
        }
    } else if (evt.isMeta(midimeta::kTrackName)) {
        trkName = evt.eData.substr(1);
    } else if (evt.isMeta(midimeta::kInstrumentName)) {
        trkInstrument = evt.eData.substr(1);
    }
    return true;
}

void MidiTrack::addEvent(const MidiEvent& evt)
{
    const MidiEvent copy = evt;  // evt may be one of our own entries, which growing would move
    MidiEvent& slot = nextSlot();
    slot.copyFrom(copy);
    if (!noteBookkeeping(slot))
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
}

bool MidiTrack::appendChannelMessage(int32_t deltaTick, uint8_t status, uint8_t data1, uint8_t data2)
{
    MidiEvent& slot = nextSlot();
    const char bytes[3] = {static_cast<char>(status), static_cast<char>(data1), static_cast<char>(data2)};
    slot.eType = MidiEvent::kChannelMessage;
    slot.eData.assign(bytes, 3);
    slot.deltaTick = deltaTick;
    slot.absTick = 0;
    slot.absMS = 0;
    m_channels.set(static_cast<size_t>(statusChannel(status)));
    if (statusKind(status) == midistatus::kProgramChange) {
        if (data1 > 127)
            return false;
        m_programs.set(data1);
    }
    return true;
}

void MidiTrack::appendMeta(int32_t deltaTick, uint8_t metaType, std::string_view data)
{
    MidiEvent& slot = nextSlot();
    slot.eType = MidiEvent::kMeta;
    slot.eData.clear();
    slot.eData.reserve(data.size() + 1);
    slot.eData.push_back(static_cast<char>(metaType));
    slot.eData.append(data);
    slot.deltaTick = deltaTick;
    slot.absTick = 0;
    slot.absMS = 0;
    if (metaType == midimeta::kTrackName)
        trkName.assign(data);
    else if (metaType == midimeta::kInstrumentName)
        trkInstrument.assign(data);
}

void MidiTrack::addChanMsg(int32_t deltaTick, uint8_t status, uint8_t data1, uint8_t data2)
{
    if (!appendChannelMessage(deltaTick, status, data1, data2))
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
}

void MidiTrack::addSysExEvt(int32_t deltaTick, std::string_view data)
{
    MidiEvent evt;
    evt.eType = MidiEvent::kSysEx;
    evt.eData.assign(data);
    evt.deltaTick = deltaTick;
    addEvent(evt);
}

void MidiTrack::addMetaEvent(int32_t deltaTick, uint8_t metaType, std::string_view data)
{
    appendMeta(deltaTick, metaType, data);
}

void MidiTrack::addGenShortMsg(int32_t deltaTick, int32_t shortMsg)
{
    const auto packed = static_cast<uint32_t>(shortMsg);
    addChanMsg(deltaTick, static_cast<uint8_t>(packed), static_cast<uint8_t>(packed >> 8),
               static_cast<uint8_t>(packed >> 16));
}

int32_t MidiTrack::setEvtsAbsTicks()
{
    int32_t tick = 0;
    for (int32_t i = 0; i < m_nEvents; ++i) {
        MidiEvent& e = m_events[static_cast<size_t>(i)];
        const std::optional<int32_t> next = i == 0 ? e.deltaTick : checkedAdd(tick, e.deltaTick);
        if (!next)
            return midierr::kOverflow;
        tick = *next;
        e.absTick = tick;
    }
    return 0;
}

void MidiTrack::c_addTextE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, midimeta::kText, text); }
void MidiTrack::c_addCopyrightE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, midimeta::kCopyright, text); }
void MidiTrack::c_addTracknameE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, midimeta::kTrackName, text); }
void MidiTrack::c_addInstrNameE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, midimeta::kInstrumentName, text); }
void MidiTrack::c_addLyricE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, midimeta::kLyric, text); }

void MidiTrack::c_addEndOfTrack(int32_t dTick)
{
    addMetaEvent(dTick, midimeta::kEndOfTrack, std::string_view("\0", 1));
}

void MidiTrack::c_addNewTempo(int32_t dTick, int32_t musPerQN)
{
    addMetaEvent(dTick, midimeta::kTempo, bigEndianBytes(static_cast<uint32_t>(musPerQN), 3));
}

void MidiTrack::c_addProgChangeE(int32_t dTick, uint8_t channel, uint8_t instrument)
{
    addChanMsg(dTick, statusWithChannel(midistatus::kProgramChange, channel), instrument, 0);
}

void MidiTrack::c_addNoteOnE(int32_t dTick, uint8_t channel, uint8_t key, uint8_t force)
{
    addChanMsg(dTick, statusWithChannel(midistatus::kNoteOn, channel), key, force);
}

void MidiTrack::c_addNoteOffE(int32_t dTick, uint8_t channel, uint8_t key)
{
    addChanMsg(dTick, statusWithChannel(midistatus::kNoteOff, channel), key, 0);
}

void MidiTrack::c_addPitchWheelE(int32_t dTick, uint8_t channel, double shiftCents)
{
    if (std::isnan(shiftCents))
        throw MidiError(midierr::kInvalidArgument, kSource);
    // The same distance either way: +-199 cents are the wheel values 41 and 16343.
    const int32_t wheel = centsToWheel(std::clamp(shiftCents, -199.0, 199.0));
    addChanMsg(dTick, statusWithChannel(midistatus::kPitchWheel, channel), wheelLsb(wheel), wheelMsb(wheel));
}

void MidiTrack::c_addPitchWheelE(int32_t dTick, uint8_t channel, std::string_view shiftCents)
{
    const std::optional<double> cents = parseDecimal(shiftCents);
    if (!cents)
        throw MidiError(midierr::kTypeMismatch, kSource);
    c_addPitchWheelE(dTick, channel, *cents);
}

}  // namespace tarabix
