#include "midi/MidiTrack.h"

#include "base/CheckedInt32.h"
#include "base/Rounding.h"
#include "midi/MidiError.h"
#include "midi/StringStreamIn.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <optional>

namespace tarabix {

namespace {

constexpr const char* kSource = "MidiTrack";
constexpr int32_t kGrowStep = 100;

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

std::string_view trimSpaces(std::string_view s)
{
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
        s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
        s.remove_suffix(1);
    return s;
}

// A decimal number such as "12", "-50", "+37.5" or "1e2"; nothing else (no "inf", no "nan").
std::optional<double> parseDecimal(std::string_view text)
{
    text = trimSpaces(text);
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

// A variable-length quantity at body[pos]: 7 bits a byte, most significant first.
int32_t readVarLen(const uint8_t* body, size_t end, size_t& pos, int32_t& value)
{
    int32_t v = 0;
    for (;;) {
        if (pos >= end)
            return midierr::kInvalidArgument;
        const uint8_t c = body[pos++];
        if (v >= (1 << 24))  // v * 128 would pass 32 bits
            return midierr::kOverflow;
        v = v * 128 + (c & 0x7F);
        if (!(c & 0x80))
            break;
    }
    value = v;
    return 0;
}

void appendVarLen(std::string& out, uint32_t value)
{
    char bytes[5];
    int n = 0;
    bytes[4 - n++] = static_cast<char>(value & 0x7F);
    while ((value >>= 7) != 0)
        bytes[4 - n++] = static_cast<char>(0x80 | (value & 0x7F));
    out.append(bytes + 5 - n, static_cast<size_t>(n));
}

void appendBigEndian32(std::string& out, uint32_t value)
{
    const char bytes[4] = {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
                           static_cast<char>(value >> 8), static_cast<char>(value)};
    out.append(bytes, 4);
}

int32_t bigEndian32(std::string_view b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint8_t>(b[0])) << 24 |
                                static_cast<uint32_t>(static_cast<uint8_t>(b[1])) << 16 |
                                static_cast<uint32_t>(static_cast<uint8_t>(b[2])) << 8 |
                                static_cast<uint32_t>(static_cast<uint8_t>(b[3])));
}

}  // namespace

const MidiEvent& MidiTrack::trkEvents(int32_t i) const
{
    checkIndex(i, events_.size());
    return events_[static_cast<size_t>(i)];
}

MidiEvent& MidiTrack::trkEvents(int32_t i)
{
    checkIndex(i, events_.size());
    return events_[static_cast<size_t>(i)];
}

void MidiTrack::setTrkEvents(int32_t i, const MidiEvent& evt)
{
    checkIndex(i, events_.size());
    events_[static_cast<size_t>(i)] = evt;
}

void MidiTrack::setTrkNEvents(int32_t n)
{
    if (n < 0 || n > trkEventsArrSize())
        throw MidiError(midierr::kSubscriptOutOfRange, kSource);
    nEvents_ = n;
}

bool MidiTrack::trkChannels(int32_t channel) const
{
    checkIndex(channel, channels_.size());
    return channels_[static_cast<size_t>(channel)];
}

void MidiTrack::setTrkChannels(int32_t channel, bool on)
{
    checkIndex(channel, channels_.size());
    channels_.set(static_cast<size_t>(channel), on);
}

bool MidiTrack::trkActInstrs(int32_t program) const
{
    checkIndex(program, programs_.size());
    return programs_[static_cast<size_t>(program)];
}

void MidiTrack::setTrkActInstrs(int32_t program, bool on)
{
    checkIndex(program, programs_.size());
    programs_.set(static_cast<size_t>(program), on);
}

int32_t MidiTrack::trkNChannels() const
{
    return static_cast<int32_t>(channels_.count());
}

std::string MidiTrack::lastMaqamMetaText() const
{
    for (int32_t i = nEvents_ - 1; i >= 0; --i) {
        const MidiEvent& e = events_[static_cast<size_t>(i)];
        if (!e.isMeta(0x01))
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
    events_.clear();
    events_.shrink_to_fit();
    nEvents_ = 0;
    trkName.clear();
    trkInstrument.clear();
    channels_.reset();
    programs_.reset();
}

void MidiTrack::copyFrom(const MidiTrack& other)
{
    if (&other == this)
        return;
    clear();
    channels_ = other.channels_;
    programs_ = other.programs_;
    events_.reserve(other.events_.size());
    for (const MidiEvent& e : other.events())
        addEvent(e);
}

MidiEvent& MidiTrack::nextSlot()
{
    if (nEvents_ == trkEventsArrSize())
        events_.resize(events_.size() + kGrowStep);  // the vector's capacity still grows geometrically
    return events_[static_cast<size_t>(nEvents_++)];
}

bool MidiTrack::noteBookkeeping(const MidiEvent& evt)
{
    if (evt.eType == MidiEvent::kChannelMessage && !evt.eData.empty()) {
        const auto status = static_cast<uint8_t>(evt.eData[0]);
        channels_.set(status & 0x0Fu);
        if ((status & 0xF0) == 0xC0) {
            const int program = evt.eData.size() > 1 ? static_cast<uint8_t>(evt.eData[1]) : -1;
            if (program < 0 || program > 127)
                return false;
            programs_.set(static_cast<size_t>(program));
        }
    } else if (evt.isMeta(0x03)) {
        trkName = evt.eData.substr(1);
    } else if (evt.isMeta(0x04)) {
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
    channels_.set(status & 0x0Fu);
    if ((status & 0xF0) == 0xC0) {
        if (data1 > 127)
            return false;
        programs_.set(data1);
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
    if (metaType == 0x03)
        trkName.assign(data);
    else if (metaType == 0x04)
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

int32_t MidiTrack::readTrk(StringStreamIn& stream)
{
    try {
        if (stream.readView(4) != "MTrk")
            return kNotATrackChunk;
        const int32_t length = bigEndian32(stream.readView(4));
        if (length < 1)
            return kEmptyChunk;
        return parseBody(stream.readView(length));
    } catch (const MidiError& e) {
        return e.number();
    } catch (const std::bad_alloc&) {
        return midierr::kOutOfMemory;
    }
}

int32_t MidiTrack::parseBody(std::string_view body)
{
    // An event takes at least two bytes, most take three or four: room for the common case up front
    // keeps the array from being moved while a long track is read.
    const size_t expected = static_cast<size_t>(nEvents_) + body.size() / 3 + kGrowStep;
    if (expected > events_.capacity())
        events_.reserve(expected);

    const auto* p = reinterpret_cast<const uint8_t*>(body.data());
    const size_t end = body.size();
    size_t pos = 0;
    uint8_t runningStatus = 0;
    while (pos < end) {
        int32_t delta = 0;
        if (const int32_t status = readVarLen(p, end, pos, delta))
            return status;
        if (pos >= end)
            return midierr::kInvalidArgument;
        const uint8_t b = p[pos++];
        if (b >= 0x80)
            runningStatus = b;
        else if (runningStatus == 0)
            return kNoRunningStatus;

        const int high = runningStatus >> 4;
        const int nData = high == 0xC || high == 0xD ? 1 : (high >= 0x8 && high <= 0xE ? 2 : 0);
        if (nData > 0) {
            uint8_t data1 = b;
            if (b >= 0x80) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                data1 = p[pos++];
            }
            uint8_t data2 = 0;
            if (nData == 2) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                data2 = p[pos++];
            }
            if (!appendChannelMessage(delta, runningStatus, data1, data2))
                return midierr::kSubscriptOutOfRange;
        } else if (b == 0xFF || b == 0xF0 || b == 0xF7) {
            uint8_t metaType = 0;
            if (b == 0xFF) {
                if (pos >= end)
                    return midierr::kInvalidArgument;
                metaType = p[pos++];
            }
            int32_t length = 0;
            if (const int32_t status = readVarLen(p, end, pos, length))
                return status;
            if (static_cast<size_t>(length) > end - pos)
                return midierr::kInvalidArgument;
            const std::string_view data = body.substr(pos, static_cast<size_t>(length));
            pos += static_cast<size_t>(length);
            if (b == 0xFF) {
                appendMeta(delta, metaType, data);
                if (metaType == 0x2F)
                    return 0;  // whatever follows the end of the track is not part of it
            } else if (b == 0xF0) {
                std::string message;
                message.reserve(data.size() + 1);
                message.push_back(static_cast<char>(0xF0));
                message.append(data);
                addSysExEvt(delta, message);
            }
            // An 0xF7 escape packet is dropped: the player never sends such packets.
        } else {
            // Also a data byte after a meta or system exclusive event: their status bytes become
            // the running status too, and they take no running data.
            return kUnknownStatusByte;
        }
    }
    return 0;
}

std::string MidiTrack::makeMidiTrackStr() const
{
    std::string body;
    body.reserve(static_cast<size_t>(nEvents_) * 4 + 8);
    for (const MidiEvent& e : events()) {
        if (e.eType == MidiEvent::kChannelMessage) {
            appendVarLen(body, static_cast<uint32_t>(e.deltaTick));
            const auto status = e.eData.empty() ? 0 : static_cast<uint8_t>(e.eData[0]);
            const size_t n = status >= 0xC0 && status <= 0xDF ? 2 : 3;
            body.append(e.eData, 0, std::min(n, e.eData.size()));
        } else if (e.eType == MidiEvent::kMeta) {
            appendVarLen(body, static_cast<uint32_t>(e.deltaTick));
            body.push_back(static_cast<char>(0xFF));
            body.push_back(e.eData.empty() ? '\0' : e.eData[0]);
            const size_t dataSize = e.eData.empty() ? 0 : e.eData.size() - 1;
            appendVarLen(body, static_cast<uint32_t>(dataSize));
            if (dataSize > 0)
                body.append(e.eData, 1);
        }
    }
    // A track read from a file keeps its end-of-track as the single byte 2F, so it gets a second,
    // complete one here: players that need FF 2F 00 find it, and the first is harmless.
    const bool closed = nEvents_ > 0 && events_[static_cast<size_t>(nEvents_ - 1)].eType == MidiEvent::kMeta &&
                        events_[static_cast<size_t>(nEvents_ - 1)].eData == std::string_view("\x2F\x00", 2);
    if (!closed)
        body.append("\x00\xFF\x2F\x00", 4);

    std::string chunk = "MTrk";
    chunk.reserve(body.size() + 8);
    appendBigEndian32(chunk, static_cast<uint32_t>(body.size()));
    chunk += body;
    return chunk;
}

int32_t MidiTrack::setEvtsAbsTicks()
{
    int32_t tick = 0;
    for (int32_t i = 0; i < nEvents_; ++i) {
        MidiEvent& e = events_[static_cast<size_t>(i)];
        const std::optional<int32_t> next = i == 0 ? e.deltaTick : checkedAdd(tick, e.deltaTick);
        if (!next)
            return midierr::kOverflow;
        tick = *next;
        e.absTick = tick;
    }
    return 0;
}

void MidiTrack::c_addTextE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, 0x01, text); }
void MidiTrack::c_addCopyrightE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, 0x02, text); }
void MidiTrack::c_addTracknameE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, 0x03, text); }
void MidiTrack::c_addInstrNameE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, 0x04, text); }
void MidiTrack::c_addLyricE(int32_t dTick, std::string_view text) { addMetaEvent(dTick, 0x05, text); }

void MidiTrack::c_addEndOfTrack(int32_t dTick)
{
    addMetaEvent(dTick, 0x2F, std::string_view("\0", 1));
}

void MidiTrack::c_addNewTempo(int32_t dTick, int32_t musPerQN)
{
    const auto v = static_cast<uint32_t>(musPerQN);
    const char bytes[3] = {static_cast<char>(v >> 16), static_cast<char>(v >> 8), static_cast<char>(v)};
    addMetaEvent(dTick, 0x51, std::string_view(bytes, 3));
}

void MidiTrack::c_addProgChangeE(int32_t dTick, uint8_t channel, uint8_t instrument)
{
    addChanMsg(dTick, statusWithChannel(0xC0, channel), instrument, 0);
}

void MidiTrack::c_addNoteOnE(int32_t dTick, uint8_t channel, uint8_t key, uint8_t force)
{
    addChanMsg(dTick, statusWithChannel(0x90, channel), key, force);
}

void MidiTrack::c_addNoteOffE(int32_t dTick, uint8_t channel, uint8_t key)
{
    addChanMsg(dTick, statusWithChannel(0x80, channel), key, 0);
}

void MidiTrack::c_addPitchWheelE(int32_t dTick, uint8_t channel, double shiftCents)
{
    if (std::isnan(shiftCents))
        throw MidiError(midierr::kInvalidArgument, kSource);
    // Within +-199 cents the wheel value stays inside 14 bits (41 .. 16343).
    const double cents = std::clamp(shiftCents, -199.0, 199.0);
    const int32_t bend = roundHalfEvenInt(cents * 4096 / 100 + 8192);
    addChanMsg(dTick, statusWithChannel(0xE0, channel), static_cast<uint8_t>(bend & 127),
               static_cast<uint8_t>(bend / 128));
}

void MidiTrack::c_addPitchWheelE(int32_t dTick, uint8_t channel, std::string_view shiftCents)
{
    const std::optional<double> cents = parseDecimal(shiftCents);
    if (!cents)
        throw MidiError(midierr::kTypeMismatch, kSource);
    c_addPitchWheelE(dTick, channel, *cents);
}

}  // namespace tarabix
