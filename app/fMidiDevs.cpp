#include "app/fMidiDevs.h"

#include "app/DialogButtons.h"

#include "app/AppIdentity.h"
#include "playback/AudioDriverSettings.h"
#include "playback/SoundFontCheck.h"
#include "playback/SoundFontLocator.h"
#include "playback/SystemMidiOut.h"
#include "playback/mMidiMain.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFont>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <iterator>

namespace tarabix {
namespace {

struct TestStep {
    uint32_t message;
    int waitMs;  // before the next step
};

constexpr uint32_t noteOn(uint32_t note) { return packShortMessage(0x90, note, 127); }
constexpr uint32_t noteOff(uint32_t note) { return packShortMessage(0x80, note, 0); }

// A rising triad on channel 1 with the first program: E, G, then a longer B, left to ring out
// before the test's output is let go.
constexpr TestStep kTestNotes[] = {
    {packShortMessage(0xC0, 0, 0), 0},
    {noteOn(64), 250}, {noteOff(64), 0},
    {noteOn(67), 250}, {noteOff(67), 0},
    {noteOn(71), 500}, {noteOff(71), 300},
};

// An output that cannot sound yet (the built-in synthesizer loading its SoundFont) is asked
// again this often, for at most this long, before the first note.
constexpr int kReadyPollMs = 20;
constexpr int kReadyPolls = 30000 / kReadyPollMs;

}  // namespace

fMidiDevs::fMidiDevs(bool deviceHeld, QWidget* parent)
    : QDialog(parent), m_sharedClosed(deviceHeld)
{
    buildControls();
    m_testTimer.setSingleShot(true);
    m_testTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_testTimer, &QTimer::timeout, this, &fMidiDevs::playTestStep);

    const int32_t id = getMidiDeviceId();
    const std::string sharedFailure = midiOutFailureReason();
    // What the shared output achieved, read before this dialog lets go of it.
    const std::string output = midiOutDescription();
    if (!output.empty())
        lblOutput->setText(tr("Playing through: %1").arg(QString::fromStdString(output)));
    if (m_sharedClosed)
        closeMidiOut();
    for (const MidiOutDevice& device : listMidiOutDevices())
        cmbMDevs->addItem(QString::fromStdString(device.name));
    // An id beyond the list (a device unplugged since) leaves nothing selected.
    cmbMDevs->setCurrentIndex(id + 1 < cmbMDevs->count() ? id + 1 : -1);
    if (const std::string problem = midiOutDevicesProblem(); !problem.empty()) {
        lblPorts->setText(tr("No system MIDI ports: %1.").arg(QString::fromStdString(problem)));
        lblPorts->show();
    }
    showSoundFont();
    if (!sharedFailure.empty())
        showSilence(tr("The current device gives no sound"), sharedFailure);
    else if (const std::string notice = midiOutNotice(); !notice.empty())
        showSilence(tr("SoundFont"), notice);
}

fMidiDevs::~fMidiDevs()
{
    releaseTestPort();
}

void fMidiDevs::buildControls()
{
    setWindowTitle(QStringLiteral("Midi Devices"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);

    lblHeading = new QLabel(QStringLiteral("MIDI Devices"), this);
    QFont headingFont = lblHeading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.3);
    lblHeading->setFont(headingFont);
    layout->addWidget(lblHeading);

    lblPrompt = new QLabel(QStringLiteral("Select a MIDI device for use or for testing"), this);
    layout->addWidget(lblPrompt);

    auto* deviceRow = new QHBoxLayout;
    cmbMDevs = new QComboBox(this);
    cmbMDevs->setMinimumContentsLength(28);
    deviceRow->addWidget(cmbMDevs, 1);
    cmdTest = new QPushButton(tr("Test"), this);
    deviceRow->addWidget(cmdTest);
    layout->addLayout(deviceRow);

    lblPorts = new QLabel(this);
    lblPorts->setWordWrap(true);
    lblPorts->hide();
    layout->addWidget(lblPorts);

    auto* soundFontRow = new QHBoxLayout;
    lblSoundFont = new QLabel(this);
    lblSoundFont->setWordWrap(true);
    soundFontRow->addWidget(lblSoundFont, 1);
    cmdSoundFont = new QPushButton(tr("SoundFont..."), this);
    cmdSoundFont->setToolTip(tr("Choose the General MIDI SoundFont (.sf2 or .sf3) of the built-in synthesizer"));
    soundFontRow->addWidget(cmdSoundFont);
    layout->addLayout(soundFontRow);
    // The built-in synthesizer's output latency: lower answers notes played by hand sooner,
    // higher survives a busier machine.
    auto* latencyRow = new QHBoxLayout;
    latencyRow->addWidget(new QLabel(tr("Built-in synthesizer latency:"), this));
    spnLatency = new QSpinBox(this);
    spnLatency->setRange(kMinSynthLatencyMs, kMaxSynthLatencyMs);
    spnLatency->setSuffix(QStringLiteral(" ms"));
    spnLatency->setValue(builtInSynthLatencyMs());
    latencyRow->addWidget(spnLatency);
    latencyRow->addStretch(1);
    layout->addLayout(latencyRow);
    lblOutput = new QLabel(this);
    lblOutput->setWordWrap(true);
    layout->addWidget(lblOutput);

    lblStatus = new QLabel(this);
    lblStatus->setWordWrap(true);
    lblStatus->hide();
    layout->addWidget(lblStatus);

    addOkCancelRow(this, layout, cmdOK, cmdCancel);

    connect(cmdTest, &QPushButton::clicked, this, &fMidiDevs::cmdTest_Click);
    connect(cmdOK, &QPushButton::clicked, this, &fMidiDevs::cmdOK_Click);
    connect(cmdSoundFont, &QPushButton::clicked, this, &fMidiDevs::cmdSoundFont_Click);
}

// The learner's own file when there is one, else the one the system offers.
void fMidiDevs::showSoundFont()
{
    const std::string mine = soundFontOverride();
    const std::string shown = mine.empty() ? findSoundFont() : mine;
    lblSoundFont->setText(shown.empty() ? tr("Built-in synthesizer's SoundFont: none found")
                                        : tr("Built-in synthesizer's SoundFont: %1").arg(QString::fromStdString(shown)));
}

void fMidiDevs::cmdSoundFont_Click()
{
    const QString start = QFileInfo(QString::fromStdString(soundFontOverride().empty() ? findSoundFont()
                                                                                       : soundFontOverride()))
                              .absolutePath();
    // Not modal to the application: a piece playing behind the dialog goes on.
    auto* files = new QFileDialog(this, tr("Choose a SoundFont"), start, tr("SoundFonts (*.sf2 *.sf3);;All files (*)"));
    files->setAttribute(Qt::WA_DeleteOnClose);
    files->setFileMode(QFileDialog::ExistingFile);
    connect(files, &QFileDialog::fileSelected, this, [this](const QString& path) { chooseSoundFontFile(path); });
    files->open();
}

bool fMidiDevs::chooseSoundFontFile(const QString& path)
{
    const SoundFontCheck check = checkSoundFontFile(path.toStdString());
    if (!check.ok) {
        showSilence(tr("This SoundFont cannot be used"), path.toStdString() + ": " + check.problem);
        return false;
    }
    setSoundFontOverride(path.toStdString());
    lblStatus->hide();
    showSoundFont();
    emit soundFontChosen(path);
    return true;
}

// Tells the learner why a device stays silent, e.g. that the built-in synthesizer found no audio
// output device, instead of leaving them to guess.
void fMidiDevs::showSilence(const QString& what, const std::string& reason)
{
    lblStatus->setText(what + QStringLiteral(": ") + QString::fromStdString(reason));
    lblStatus->show();
}

void fMidiDevs::cmdTest_Click()
{
    if (testRunning() || cmbMDevs->currentIndex() < 0)
        return;
    const int32_t id = cmbMDevs->currentIndex() - 1;
    int32_t result = kMidiOutOk;
    std::string reason;
    m_testPort = openMidiOutDevice(id, result, &reason);
    if (!m_testPort) {
        if (!reason.empty())
            showSilence(tr("This device gives no sound"), reason);
        auto* box = new QMessageBox(QMessageBox::Warning, appIdentity().title,
                                    QStringLiteral("Unable to use this device now.\r\n"
                                                   "It might be in exclusive use by another program, "
                                                   "or it can be unusable."),
                                    QMessageBox::Ok, this);
        if (!reason.empty())
            box->setInformativeText(QString::fromStdString(reason));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
        return;
    }
    lblStatus->hide();
    cmdTest->setEnabled(false);
    m_testStep = 0;
    m_readyPolls = 0;
    playTestStep();
}

// One step per call, the waits left to the timer: the window and the piece behind it go on
// while the notes sound.
void fMidiDevs::playTestStep()
{
    // Notes sent before the output can sound would be lost, or heard all at once when it can.
    if (m_testPort && m_testStep == 0 && !m_testPort->isReady()) {
        const std::string reason = m_testPort->failureReason();
        if (!reason.empty() || ++m_readyPolls > kReadyPolls) {
            showSilence(tr("This device gives no sound"), reason.empty() ? "it did not become ready" : reason);
            endTest();
        } else {
            m_testTimer.start(kReadyPollMs);
        }
        return;
    }
    while (m_testPort && m_testStep < std::size(kTestNotes)) {
        const TestStep& step = kTestNotes[m_testStep++];
        m_testPort->send(step.message);
        if (step.waitMs > 0) {
            m_testTimer.start(step.waitMs);
            return;
        }
    }
    endTest();
}

// Also cuts a test short when the dialog closes: the sounding note is released before the
// test's output is let go, so nothing hangs on the device.
void fMidiDevs::releaseTestPort()
{
    m_testTimer.stop();
    if (!m_testPort)
        return;
    if (m_testStep < std::size(kTestNotes) && shortMessageStatus(kTestNotes[m_testStep].message) == 0x80)
        m_testPort->send(kTestNotes[m_testStep].message);
    m_testPort->close();
    m_testPort.reset();
    m_testStep = 0;
}

void fMidiDevs::endTest()
{
    if (!m_testPort)
        return;
    releaseTestPort();
    cmdTest->setEnabled(true);
    emit testFinished();
}

void fMidiDevs::cmdOK_Click()
{
    if (cmbMDevs->currentIndex() >= 0) {
        const int32_t id = cmbMDevs->currentIndex() - 1;
        setMidiDeviceId(id);
        emit deviceChosen(id);
    }
    // Applies at the re-open that follows when the dialog closes.
    if (spnLatency->value() != builtInSynthLatencyMs()) {
        setBuiltInSynthLatencyMs(spnLatency->value());
        emit latencyChosen(spnLatency->value());
    }
    accept();
}

void fMidiDevs::done(int result)
{
    endTest();
    // A failed re-open is not reported here: the window's activity timer tries again, and the
    // reason stays with the output layer for the next time this dialog opens.
    if (m_sharedClosed) {
        reopenMidiOut();
        m_sharedClosed = false;
    }
    QDialog::done(result);
}

}  // namespace tarabix
