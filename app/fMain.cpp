// Start-up and shutdown of the main window.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/HandPlayer.h"
#include "app/ScopedFlag.h"
#include "app/fSheet.h"
#include "oud/view/UdPictureWidget.h"
#include "oud/view/UdResources.h"
#include "playback/SoundFontLocator.h"
#include "playback/SystemMidiOut.h"
#include "playback/mMidiMain.h"
#include "playback/qt/QtPlayerWait.h"
#include "settings/UserSettings.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QGuiApplication>
#include <QScreen>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace tarabix {

fMain::fMain(fMainEnvironment environment) : m_env(std::move(environment))
{
    m_settings = m_env.settingsStore ? std::make_unique<UserSettings>(std::move(m_env.settingsStore))
                                     : std::make_unique<UserSettings>();
    buildControls();
    buildMenus();
    connectFileCommands();
    connectTransport();
    connectPractice();
    connectLookAhead();
    connectMenus();
}

fMain::~fMain()
{
    if (m_formLoaded)
        unload();
}

void fMain::message(QMessageBox::Icon icon, const QString& text)
{
    if (m_env.showMessage) {
        m_env.showMessage(icon, text);
        return;
    }
    QMessageBox box(icon, appIdentity().title, text, QMessageBox::Ok, isVisible() ? this : nullptr);
    box.exec();
}

bool fMain::load()
{
    initApplication(m_env.programFolder);
    setWindowTitle(appIdentity().title);
    resize(sizeHint().expandedTo(QSize(900, 560)));
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.x() + (area.width() - width()) / 2, area.y() + (area.height() - height()) / 2);
    }

    {
        const ScopedFlag filling(m_fillingControls);
        if (!checkResources())
            return false;
        loadSettings();
        fillTuningList();
        m_router.setVolume(sldVolume->value());
        fillMaqamLists();
        udMidiOctShift->setValue(0);
        udTuneOctShift->setValue(0);
        redrawFingerboard();
    }

    // The SoundFont from the command line wins for this run over the one chosen before.
    if (soundFontOverride().empty())
        setSoundFontOverride(m_settings->textValue(Setting::SoundFontFile));
    setBuiltInSynthLatencyMs(m_settings->synthLatencyMs());
    reopenMidiOut();
    m_deviceHeld = true;
    tmrAct->start();
    m_formLoaded = true;

    // The learner's own file from the command line is opened with messages; the start-up sample
    // quietly, so a missing sample leaves just "[No file is opened]".
    if (!m_env.startFile.isEmpty())
        QTimer::singleShot(0, this, [this] { openFile(m_env.startFile, false); });
    else
        openFile(appIdentity().path({QStringLiteral("samples"), QStringLiteral("agam"), QStringLiteral("zoroony.mzf")}), true);
    return true;
}

// The learner's choices that need the fingerboard and the hand player made by checkResources.
void fMain::loadSettings()
{
    const StartupOptions o = m_settings->loadStartup();
    // The key guides are shown at every start.
    m_hand->setOptions({.approxQrt = o.approxQrt,
                        .playMouseMove = o.playMouseMove,
                        .playHilite = o.mkbPlayHilite,
                        .doubling = o.mkbDoubling,
                        .showKbGuides = true,
                        .doubleOnMs = o.mkbDblOn1MS,
                        .doubleOffMs = o.mkbDblOffMS});
    m_display->setPresentation(m_settings->notePresentation());
    if (QAbstractButton* option = optNNames->button(nameSystem()))
        option->setChecked(true);
}

bool fMain::checkResources()
{
    const int32_t orientation = m_settings->udOrient();
    const int32_t tuningCategory = m_settings->tuningICateg();
    m_oud.loadTunings(appIdentity().path({QStringLiteral("tunings.ini")}).toStdString());

    UdResourceLoad loaded = loadUdResources(appIdentity().programFolder);
    if (loaded.missing != MissingResource::None) {
        message(QMessageBox::Critical, missingResourceMessage(loaded.missing));
        return false;
    }
    m_display = std::make_unique<UdDisplay>(std::move(loaded.resources));
    m_display->attach(&m_oud);
    m_display->followMaqams(&m_maqams);

    m_fingerboard = new UdPictureWidget(m_display.get(), fingerboardHost);
    m_fingerboard->setFocusPolicy(Qt::StrongFocus);
    fingerboardHost->layout()->addWidget(m_fingerboard);
    connectPlayByHand();
    connectOudControls();

    m_oud.setOrientation(orientation, false);
    cmbOrient->setCurrentIndex(m_oud.orientation());
    m_storedTuningId = tuningCategory;
    m_oud.applyTuning(tuningCategory, 0);
    m_appliedTuningId = m_oud.curTuningId();
    m_appliedTuneOctShift = 0;
    return true;
}

void fMain::unload()
{
    tmrAct->stop();
    stopPlaying();
    if (fSheet::isLoaded())
        fSheet::unload();
    closeMidiOut();
    m_deviceHeld = false;
    m_formLoaded = false;
}

void fMain::closeEvent(QCloseEvent* event)
{
    if (m_formLoaded)
        unload();
    QMainWindow::closeEvent(event);
}

}  // namespace tarabix
