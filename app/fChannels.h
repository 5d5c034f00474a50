#pragma once

#include "midi/MidiBytes.h"

#include <QDialog>

#include <array>
#include <cstdint>

class QCheckBox;
class QLabel;
class QPushButton;

namespace tarabix {

// Per MIDI channel (index 0 = channel 1): whether it is heard, and whether its notes are marked
// on the fingerboard.
struct ChannelTables {
    std::array<bool, kMidiChannels> enabled;
    std::array<bool, kMidiChannels> shown;
    bool operator==(const ChannelTables&) const = default;
};

inline ChannelTables allChannelsOn()
{
    ChannelTables t;
    t.enabled.fill(true);
    t.shown.fill(true);
    return t;
}

// The channels dialog: mute or hide any of the 16 channels, with the channels the piece uses
// marked. Not modal, and every change applies at once through channelsChanged, so the learner
// can mute a voice while the piece plays and the window can silence that channel's notes.
class fChannels : public QDialog {
    Q_OBJECT
public:
    // usedMask: bit k set when the piece has events on channel k.
    fChannels(const ChannelTables& tables, uint16_t usedMask, QWidget* parent = nullptr);

    const ChannelTables& tables() const { return m_tables; }

    // For the window: a newly opened piece, or tables reset elsewhere. Emits nothing.
    void setTables(const ChannelTables& tables);
    void setUsedChannels(uint16_t usedMask);

    std::array<QLabel*, kMidiChannels> lblChannel{};
    std::array<QCheckBox*, kMidiChannels> chkHeard{};
    std::array<QCheckBox*, kMidiChannels> chkShown{};
    QPushButton* cmdHearAll = nullptr;
    QPushButton* cmdHearNone = nullptr;
    QPushButton* cmdShowAll = nullptr;
    QPushButton* cmdShowNone = nullptr;
    QPushButton* cmdClose = nullptr;

signals:
    void channelsChanged(const tarabix::ChannelTables& tables);

private:
    void buildControls();
    void showTables();
    void readBoxes();
    void setColumn(std::array<bool, kMidiChannels> ChannelTables::*column, bool on);

    ChannelTables m_tables;
};

}  // namespace tarabix
