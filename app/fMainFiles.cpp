// Opening and closing pieces: the Open command, the file named on the command line or dropped on
// the window, and the start-up sample.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/PositionBar.h"
#include "app/WindowTexts.h"
#include "midi/MzfContainer.h"
#include "midi/PieceFile.h"
#include "oud/model/PieceMaqam.h"
#include "oud/view/UdPictureWidget.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

namespace tarabix {

namespace {

// What the learner is told when a piece cannot be opened.
QString openFailureText(const QString& path, const PieceReadResult& read)
{
    switch (read.fault) {
    case PieceFault::BadMzf:
        return read.status == mzf::kNotUsable
                   ? QStringLiteral("The file <%1> is not a valid MZF file.").arg(path)
                   : QStringLiteral("The file <%1> is not a valid music file.\r\n\r\nError %2").arg(path).arg(read.status);
    case PieceFault::BadMidi:
        return QStringLiteral("Could not read the contents of the music file. Error %1").arg(read.status);
    case PieceFault::NoSuchFile:
    case PieceFault::None:
        break;
    }
    return QStringLiteral("The file <%1> does not exist.").arg(path);
}

}  // namespace

void fMain::connectFileCommands()
{
    connect(cmdOpen, &QPushButton::clicked, this, &fMain::cmdOpen_Click);
    connect(mnu_File_Open, &QAction::triggered, this, &fMain::cmdOpen_Click);
    connect(mnu_File_Close, &QAction::triggered, this, &fMain::closeFile);
    setAcceptDrops(true);
}

void fMain::cmdOpen_Click()
{
    if (m_fingerboard)
        m_fingerboard->setFocus();
    stopPlaying();
    const QString chosen = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open file:"), appIdentity().path({QStringLiteral("samples")}),
        QStringLiteral("Music Files (*.mid , *.mz?) (*.mid *.mz?);;All Files (*.*) (*)"), nullptr,
        // The captions already name their patterns; the dialog must not add them a second time.
        QFileDialog::HideNameFilterDetails);
    if (chosen.isEmpty())
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QCoreApplication::processEvents();
    openFile(chosen.trimmed(), false);
    QApplication::restoreOverrideCursor();
}

void fMain::showNoFile()
{
    m_currFile.clear();
    cmdSheet->setEnabled(false);
    lblFile->setText(noFileLabelText());
}

void fMain::openFile(const QString& path, bool quiet)
{
    m_currFile = path;
    QCoreApplication::processEvents();

    // A new piece; the old one lives on in the player's hands if it is still running.
    auto piece = std::make_shared<MidiFile>();
    const PieceReadResult read = readPieceFile(QFile::encodeName(path).toStdString(), *piece);
    if (!read.ok()) {
        QApplication::restoreOverrideCursor();
        m_mf = std::make_shared<MidiFile>();
        if (!m_inPlay)
            m_player.setTheMidi(m_mf.get());
        if (!quiet)
            message(QMessageBox::Warning, openFailureText(path, read));
        showNoFile();
        restorePractice();
        return;
    }
    m_mf = piece;
    if (!m_inPlay) {
        m_player.clear();
        m_player.setTheMidi(m_mf.get());
    }
    cmdSheet->setEnabled(read.hasSheet);
    m_pieceLength = piece->allLastAbsMSec();
    {
        const QSignalBlocker block(sldPosition);
        sldPosition->setRange(0, positionRangeSeconds(m_pieceLength));
        sldPosition->setValue(0);
    }
    lblPieceLength->setText(pieceTimeText(m_pieceLength));
    lblFile->setText(fileLabelText(path));
    lblFile->setToolTip(path);
    if (udMidiOctShift->value() != 0)
        udMidiOctShift->setValue(0);  // its change handler resets the device and the caption
    // The piece's own maqam is on the fingerboard before it plays, not only once its marker is due.
    if (const std::optional<MaqamMarker> marker = firstMaqamMarker(*piece, m_maqams))
        applyMaqamMarker(*marker);
    restorePractice();
}

void fMain::closeFile()
{
    if (m_inPlay)
        stopPlaying();
    m_mf = std::make_shared<MidiFile>();
    if (!m_inPlay)
        m_player.setTheMidi(m_mf.get());
    m_currFile.clear();
    m_pieceLength = 0;
    cmdSheet->setEnabled(false);
    lblFile->setText(noFileLabelText());
    lblFile->setToolTip({});
    lblPieceLength->setText(pieceTimeText(0));
    restorePractice();
}

void fMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() && event->mimeData()->urls().first().isLocalFile())
        event->acceptProposedAction();
}

void fMain::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile())
        return;
    event->acceptProposedAction();
    stopPlaying();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    openFile(urls.first().toLocalFile(), false);
    QApplication::restoreOverrideCursor();
}

}  // namespace tarabix
