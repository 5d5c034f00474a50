// The instrument's choices in the main window: naming system, tuning and its octave, the view of
// the oud, maqam and tonic. Programmatic changes happen in the filling-controls state, which keeps
// the handlers from doing work twice.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/ScopedFlag.h"
#include "oud/model/NoteNames.h"
#include "oud/view/UdPictureWidget.h"
#include "playback/mMidiMain.h"
#include "settings/UserSettings.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QSpinBox>

namespace tarabix {
namespace {

QString qs(const std::string& s)
{
    return QString::fromStdString(s);
}

}  // namespace

void fMain::connectOudControls()
{
    connect(optNNames, &QButtonGroup::idClicked, this, &fMain::optNNames_Click);
    connect(cmbTuning, &QComboBox::currentIndexChanged, this, [this] { cmbTuning_Click(); });
    connect(udTuneOctShift, &QSpinBox::valueChanged, this, [this] { udTuneOctShift_Change(); });
    connect(cmbOrient, &QComboBox::currentIndexChanged, this, [this] { cmbOrient_Click(); });
    connect(cmbMaqams, &QComboBox::currentIndexChanged, this, [this] { cmbMaqams_Click(); });
    connect(cmbMaqamStarts, &QComboBox::currentIndexChanged, this, [this] { cmbMaqamStarts_Click(); });
}

void fMain::optNNames_Click(int index)
{
    if (m_fillingControls || !m_display)
        return;
    NotePresentation chosen = m_display->presentation();
    chosen.nameSystem = index;
    showNotesAs(chosen);
}

// Every change of how notes are shown comes here, from the names buttons and from the note display
// dialog: it is stored, the fingerboard is drawn by it, and the lists that spell notes follow.
void fMain::showNotesAs(const NotePresentation& chosen)
{
    if (!m_display || chosen == m_display->presentation())
        return;
    const bool namesChanged = chosen.nameSystem != m_display->presentation().nameSystem;
    m_settings->setNotePresentation(chosen);
    m_display->setPresentation(chosen);
    if (namesChanged) {
        if (QAbstractButton* option = optNNames->button(chosen.nameSystem))
            option->setChecked(true);
        fillTuningList();
        if (cmbMaqams->currentIndex() > 0)
            refillTonicList(cmbMaqams->currentIndex());
    }
    redrawFingerboard();
}

int32_t fMain::nameSystem() const
{
    return m_display ? m_display->presentation().nameSystem : NotePresentation{}.nameSystem;
}

void fMain::fillTuningList()
{
    const ScopedFlag filling(m_fillingControls);
    cmbTuning->clear();
    for (int32_t i = 0; i < m_oud.tuningCount(); ++i) {
        int32_t id = -1;
        const std::string caption = m_oud.tuningAt(i, nameSystem(), id);
        cmbTuning->addItem(qs(caption), id);
    }
    const int current = cmbTuning->findData(m_oud.curTuningId() == -1 ? m_storedTuningId : m_oud.curTuningId());
    cmbTuning->setCurrentIndex(current >= 0 ? current : 0);
}

void fMain::cmbTuning_Click()
{
    if (!m_fillingControls)
        applyTuningFromControls();
}

void fMain::udTuneOctShift_Change()
{
    midiOutReset();
    lblTuneOctShift->setText(qs(octaveCaption(udTuneOctShift->value())));
    if (!m_fillingControls)
        applyTuningFromControls();
}

void fMain::applyTuningFromControls()
{
    const int32_t id = cmbTuning->currentData().toInt();
    const int32_t shift = udTuneOctShift->value();
    if (id == m_appliedTuningId && shift == m_appliedTuneOctShift)
        return;
    m_oud.applyTuning(id, shift);
    m_appliedTuneOctShift = shift;
    if (id != m_appliedTuningId) {
        m_appliedTuningId = id;
        if (id != m_storedTuningId) {
            m_storedTuningId = id;
            m_settings->setInt(Setting::TuningICateg, id);
        }
    }
    redrawFingerboard();
}

void fMain::cmbOrient_Click()
{
    if (m_fillingControls)
        return;
    const int32_t orientation = cmbOrient->currentIndex();
    m_oud.setOrientation(orientation, true);
    m_settings->setInt(Setting::UdOrient, orientation);
    redrawFingerboard();
}

void fMain::fillMaqamLists()
{
    const ScopedFlag filling(m_fillingControls);
    const std::string error = m_maqams.loadMaqams(appIdentity().path({QStringLiteral("maqams.ini")}).toStdString());
    if (!error.empty())
        message(QMessageBox::Warning, qs(error));
    cmbMaqams->clear();
    cmbMaqams->addItem(QStringLiteral("--None--"));
    for (int32_t i = 1; i <= m_maqams.maqamCount(); ++i)
        cmbMaqams->addItem(qs(m_maqams.maqamName(i)));
    cmbMaqams->setCurrentIndex(0);
    cmbMaqamStarts->clear();
    cmbMaqamStarts->setEnabled(false);
}

void fMain::refillTonicList(int32_t maqamIndex)
{
    const ScopedFlag filling(m_fillingControls);
    const int keep = cmbMaqamStarts->currentIndex();
    cmbMaqamStarts->clear();
    const auto tonics = m_maqams.maqamTonics(maqamIndex);
    for (int k = 0; k < 12; ++k)
        cmbMaqamStarts->addItem(qs(spelledNoteName(tonics[k], nameSystem())), k);
    cmbMaqamStarts->setCurrentIndex(keep);
}

void fMain::cmbMaqams_Click()
{
    if (m_fillingControls)
        return;
    const int32_t index = cmbMaqams->currentIndex();
    int32_t tonic = 0;
    if (index > 0) {
        refillTonicList(index);
        tonic = m_maqams.maqamHomeTonic(index).pitchClass;
        {
            const ScopedFlag filling(m_fillingControls);
            cmbMaqamStarts->setCurrentIndex(tonic);
        }
        cmbMaqamStarts->setEnabled(true);
    } else {
        cmbMaqamStarts->setEnabled(false);
    }
    m_maqams.selectMaqam(index, tonic);
    redrawFingerboard();
}

void fMain::cmbMaqamStarts_Click()
{
    if (m_fillingControls || cmbMaqamStarts->currentIndex() < 0)
        return;
    m_maqams.selectMaqam(cmbMaqams->currentIndex(), cmbMaqamStarts->currentData().toInt());
    redrawFingerboard();
}

void fMain::applyMaqamMarker(MaqamMarker marker)
{
    // Both changes go through the lists' own handlers, as if the learner had chosen them.
    cmbMaqams->setCurrentIndex(marker.index);
    cmbMaqamStarts->setCurrentIndex(marker.tonic);
}

void fMain::redrawFingerboard()
{
    if (m_display)
        m_display->redrawResting();
    showRangeSide(0);
}

void fMain::showRangeSide(int32_t side)
{
    lblRangeLow->setVisible(side == kRangeBelow);
    lblRangeHigh->setVisible(side == kRangeAbove);
}

}  // namespace tarabix
