#pragma once

#include <QDialog>
#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <memory>

class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

namespace tarabix {

class MidiOutPort;

// The output device dialog: pick the device the program plays through, and try any device with
// three test notes. While it is open the shared output is closed, so a device that takes one
// client at a time can be tried; OK or Cancel (or closing the window) opens the shared output
// again when the main window holds it. Open it with open(): a piece keeps playing behind it.
class fMidiDevs : public QDialog {
    Q_OBJECT
public:
    explicit fMidiDevs(bool deviceHeld, QWidget* parent = nullptr);
    ~fMidiDevs() override;

    bool testRunning() const { return m_testPort != nullptr; }

    // Makes `path` the built-in synthesizer's SoundFont when it passes the quick check (heard
    // from the next open of the output, at the latest when this dialog closes); otherwise says
    // why and changes nothing. What the "SoundFont..." button's file dialog leads to.
    bool chooseSoundFontFile(const QString& path);

    void done(int result) override;

    QLabel* lblHeading = nullptr;
    QLabel* lblPrompt = nullptr;
    QComboBox* cmbMDevs = nullptr;
    QLabel* lblStatus = nullptr;
    QLabel* lblSoundFont = nullptr;
    QLabel* lblPorts = nullptr;
    QPushButton* cmdSoundFont = nullptr;
    QSpinBox* spnLatency = nullptr;
    QLabel* lblOutput = nullptr;
    QPushButton* cmdTest = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

signals:
    void testFinished();
    void deviceChosen(int32_t id);
    // A SoundFont that passed the check; the main window remembers it.
    void soundFontChosen(const QString& path);
    // The built-in synthesizer's latency was changed on OK (the window keeps it in the settings).
    void latencyChosen(int ms);

private:
    void buildControls();
    void cmdTest_Click();
    void cmdOK_Click();
    void cmdSoundFont_Click();
    void showSoundFont();
    void playTestStep();
    void endTest();
    void releaseTestPort();
    void showSilence(const QString& what, const std::string& reason);

    // The main window held the shared output and this dialog closed it: it is opened again once.
    bool m_sharedClosed;
    std::unique_ptr<MidiOutPort> m_testPort;
    size_t m_testStep = 0;
    int m_readyPolls = 0;
    QTimer m_testTimer;
};

}  // namespace tarabix
