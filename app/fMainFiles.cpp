// Opening and closing pieces: the Open command, the file named on the command line or dropped on
// the window, and the start-up sample.
#include "app/fMain.h"

#include "app/AppIdentity.h"
#include "app/WindowTexts.h"
#include "midi/MzfContainer.h"
#include "midi/StringStreamIn.h"
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
        QStringLiteral("Music Files (*.mid , *.mz?) (*.mid *.mz?);;All Files (*.*) (*)"));
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
    const std::string file = QFile::encodeName(path).toStdString();

    std::string midiBytes;
    bool hasSheet = false;
    const bool isMzf = isMzfPath(path.toStdString());
    if (isMzf) {
        const int32_t status = getMzfMidi(file, midiBytes, hasSheet);
        if (status != 0) {
            if (!quiet) {
                QApplication::restoreOverrideCursor();
                message(QMessageBox::Warning,
                        status == mzf::kNotUsable
                            ? QStringLiteral("The file <%1> is not a valid MZF file.").arg(path)
                            : QStringLiteral("The file <%1> is not a valid music file.\r\n\r\nError %2").arg(path).arg(status));
            }
            showNoFile();
            return;
        }
    }

    // A new piece; the old one lives on in the player's hands if it is still running.
    auto piece = std::make_shared<MidiFile>();
    m_mf = piece;
    if (!m_inPlay) {
        m_player.clear();
        m_player.setTheMidi(m_mf.get());
    }
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    int32_t status;
    if (isMzf) {
        StringStreamIn stream;
        stream.setFromString(std::move(midiBytes));
        status = piece->readMidi(stream);
    } else {
        status = piece->readMidiFile(file);
    }
    if (status != 0) {
        QApplication::restoreOverrideCursor();
        m_mf = std::make_shared<MidiFile>();
        if (!m_inPlay)
            m_player.setTheMidi(m_mf.get());
        if (!quiet)
            message(QMessageBox::Warning,
                    QStringLiteral("Could not read the contents of the music file. Error %1").arg(status));
        showNoFile();
        return;
    }

    m_hasSheet = hasSheet;
    cmdSheet->setEnabled(hasSheet);
    m_pieceLength = piece->allLastAbsMSec();
    {
        const QSignalBlocker block(sldPosition);
        sldPosition->setRange(0, positionRangeSeconds(m_pieceLength));
        sldPosition->setValue(0);
    }
    lblPieceLength->setText(pieceTimeText(m_pieceLength));
    resetPlayerChannelTables();
    lblFile->setText(fileLabelText(path));
    lblFile->setToolTip(path);
    if (udMidiOctShift->value() != 0)
        udMidiOctShift->setValue(0);  // its change handler resets the device and the caption
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
    m_hasSheet = false;
    cmdSheet->setEnabled(false);
    lblFile->setText(noFileLabelText());
    lblFile->setToolTip({});
    lblPieceLength->setText(pieceTimeText(0));
    resetPlayerChannelTables();
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
