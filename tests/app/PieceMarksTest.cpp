// The fingerboard shows a piece's notes as the learner hears them: through an output that sounds
// them later than it gets them (the built-in synthesizer), each mark waits that long, and Stop,
// Pause and a jump leave nothing behind.
#include "MainWindowFixture.h"

#include <QElapsedTimer>
#include <QTimer>

namespace tarabix::test {
namespace {

class PieceMarksTest : public MainWindowTest {
protected:
    void SetUp() override
    {
        MainWindowTest::SetUp();
        m_clock.start();
        // The recorder reads its clock at every message it gets: the moment each was sent, and
        // what the fingerboard shows then.
        setMidiOutBackend({[] { return std::vector<std::string>{}; }, [this](int32_t) {
                               auto port = std::make_unique<RecorderPort>(m_recording, [this] {
                                   if (m_watchSends)
                                       m_markedWhenSent.push_back(markedAt(60, 0));
                                   return now();
                               });
                               port->setHeardDelayMs(m_heardDelayMs);
                               return port;
                           }});
    }

    int32_t now() const { return static_cast<int32_t>(m_clock.elapsed()); }

    // The window, with every change of the displayed fingerboard noted: when, and whether the two
    // notes of the pieces below were marked then.
    fMainProbe& startWatching()
    {
        fMainProbe& w = start();
        UdDisplay* display = w.display();
        display->onChanged = [this, paint = display->onChanged](const QRect& rect) {
            m_board.push_back({now(), markedAt(60, 0), markedAt(64, 50)});
            paint(rect);
        };
        return w;
    }

    // Whether the displayed fingerboard carries a sounding mark at the place of a pitch: there it
    // differs from the resting picture.
    bool markedAt(int32_t note, int32_t cents) const
    {
        const UdDisplay* display = m_window->display();
        const std::optional<PicPoint> at = display->pointOfPitch(note, cents);
        return at && display->picUd().pixel(at->x, at->y) != display->picUdClone().pixel(at->x, at->y);
    }

    bool boardAtRest() const { return m_window->display()->picUd() == m_window->display()->picUdClone(); }

    // When the message was sent; -1 if it never was.
    int32_t sentAt(uint32_t message) const
    {
        for (const RecordedMessage& m : m_recording->messages())
            if (m.message == message)
                return m.timeMs;
        return -1;
    }

    struct Board {
        int32_t atMs;
        bool marked60;
        bool marked64;
    };
    // The first change, after the one at index `after`, that leaves a note's mark as asked: its
    // index, or -1.
    int firstBoard(bool Board::*note, bool marked, int after = -1) const
    {
        for (size_t i = static_cast<size_t>(after + 1); i < m_board.size(); ++i)
            if (m_board[i].*note == marked)
                return static_cast<int>(i);
        return -1;
    }
    int32_t boardAt(int index) const { return m_board.at(static_cast<size_t>(index)).atMs; }
    bool everMarked(bool Board::*note) const { return firstBoard(note, true) >= 0; }

    // Note 60 from fromMs for lengthMs, then note 64 a quarter tone up for as long.
    QString writeTwoNotes(int32_t fromMs, int32_t lengthMs)
    {
        MidiFile piece;
        piece.setNTracks(1);
        MidiTrack* t = piece.tracks(0);
        t->c_addNoteOnE(fromMs, 0, 60, 100);
        t->c_addNoteOffE(lengthMs, 0, 60);
        t->c_addPitchWheelE(0, 0, 50.0);
        t->c_addNoteOnE(0, 0, 64, 100);
        t->c_addNoteOffE(lengthMs, 0, 64);
        t->c_addEndOfTrack(0);
        piece.setEvtsAbsTicks();
        piece.setEvtsAbsMSecs();
        const QString path = m_pieces.filePath(QStringLiteral("two.mid"));
        EXPECT_EQ(piece.toFile(QFile::encodeName(path).toStdString()), 0);
        return path;
    }

    QElapsedTimer m_clock;
    int32_t m_heardDelayMs = 0;
    // While set, whether note 60 is marked as each message is sent (read through the clock).
    bool m_watchSends = false;
    std::vector<bool> m_markedWhenSent;
    std::vector<Board> m_board;
};

constexpr uint32_t kOn60 = 0x4F3C90;  // velocity 100 at the window's volume of 100
constexpr uint32_t kOff60 = 0x3C80;
constexpr uint32_t kOn64 = 0x4F4090;
constexpr uint32_t kOff64 = 0x4080;

// Each mark appears and goes the output's delay after its note-on and note-off were sent, in the
// piece's order; at the end of the piece the last note is still marked while it is heard, and the
// fingerboard rests once its mark has gone.
TEST_F(PieceMarksTest, MarksComeAndGoWhenTheNotesAreHeardInTheirOrder)
{
    m_heardDelayMs = 200;
    fMainProbe& w = startWatching();
    w.openFile(writeTwoNotes(0, 400), false);
    w.cmdPlay->click();  // returns at the end of the piece, as note 64 is sent its note-off
    const bool lastNoteMarkedAtTheEnd = markedAt(64, 50);
    ASSERT_TRUE(QTest::qWaitFor([&] { return boardAtRest() && everMarked(&Board::marked64); }, 5000));

    EXPECT_TRUE(lastNoteMarkedAtTheEnd);
    const int shown60 = firstBoard(&Board::marked60, true);
    const int gone60 = firstBoard(&Board::marked60, false, shown60);
    const int shown64 = firstBoard(&Board::marked64, true);
    const int gone64 = firstBoard(&Board::marked64, false, shown64);
    ASSERT_GE(shown60, 0);
    ASSERT_GE(gone60, 0);
    ASSERT_GE(gone64, 0);
    EXPECT_LT(gone60, shown64);
    // Not before the delay, less the player's lateness in handing an event over on a loaded
    // machine (the marks keep to the due time, the recorder notes when the event was sent).
    constexpr int32_t kSlackMs = 50;
    EXPECT_GE(boardAt(shown60) - sentAt(kOn60), m_heardDelayMs - kSlackMs);
    EXPECT_GE(boardAt(gone60) - sentAt(kOff60), m_heardDelayMs - kSlackMs);
    EXPECT_GE(boardAt(shown64) - sentAt(kOn64), m_heardDelayMs - kSlackMs);
    EXPECT_GE(boardAt(gone64) - sentAt(kOff64), m_heardDelayMs - kSlackMs);
}

// With an output that sounds what it gets at once (a system MIDI port), a note's mark is on the
// fingerboard as the next message goes out, as when the window drew at delivery.
TEST_F(PieceMarksTest, WithoutADelayMarksShowAsTheNotesAreSent)
{
    m_heardDelayMs = 0;
    fMainProbe& w = start();
    w.openFile(writeTwoNotes(0, 60), false);
    m_recording->clear();
    m_markedWhenSent.clear();
    m_watchSends = true;
    w.cmdPlay->click();
    m_watchSends = false;
    const std::vector<RecordedMessage> sent = m_recording->messages();
    ASSERT_EQ(sent.size(), m_markedWhenSent.size());
    std::vector<std::pair<uint32_t, bool>> notes;
    for (size_t i = 0; i < sent.size(); ++i)
        if (sent[i].message == kOn60 || sent[i].message == kOff60 || sent[i].message == kOn64)
            notes.push_back({sent[i].message, m_markedWhenSent[i]});
    // Note 60 is not yet marked as its note-on goes out, marked as its note-off does, gone by 64.
    const std::vector<std::pair<uint32_t, bool>> expected = {{kOn60, false}, {kOff60, true}, {kOn64, false}};
    EXPECT_EQ(notes, expected);
}

// A pause, and a stop after the resume, each with marks still waiting: the fingerboard rests at
// once, and none of them appears afterwards.
TEST_F(PieceMarksTest, PauseAndStopLeaveNothingBehind)
{
    m_heardDelayMs = 500;  // far longer than the test takes to act, however loaded the machine
    fMainProbe& w = startWatching();
    w.openFile(writeTwoNotes(0, 300), false);
    bool sentBeforePause = false;
    QTimer::singleShot(100, &w, [&] {
        sentBeforePause = sentAt(kOn60) >= 0;
        w.cmdPause->click();
    });
    w.cmdPlay->click();
    EXPECT_TRUE(sentBeforePause);
    EXPECT_TRUE(boardAtRest());
    QTest::qWait(m_heardDelayMs + 200);
    EXPECT_FALSE(everMarked(&Board::marked60)) << "shown while paused";

    QTimer::singleShot(250, &w, [&] { w.cmdStop->click(); });
    w.cmdPause->click();  // resumes; note 64 is sent, then the stop comes
    EXPECT_GE(sentAt(kOn64), 0);
    EXPECT_TRUE(boardAtRest());
    QTest::qWait(m_heardDelayMs + 200);
    EXPECT_TRUE(boardAtRest());
    EXPECT_FALSE(everMarked(&Board::marked60));
    EXPECT_FALSE(everMarked(&Board::marked64));
}

// A jump with the slider while a note's mark waits: the mark is dropped with the note's sound, and
// the first note after the jump shows in its turn.
TEST_F(PieceMarksTest, AJumpDropsWhatWaitsAndTheNotesAfterItShow)
{
    m_heardDelayMs = 300;
    fMainProbe& w = startWatching();
    w.openFile(writeTwoNotes(0, 2000), false);  // note 64 from 2 s
    int32_t jumpedAt = -1;
    QTimer::singleShot(100, &w, [&] {
        w.sldPosition->setSliderDown(true);
        w.sldPosition->setSliderPosition(2);
        w.sldPosition->setSliderDown(false);
        jumpedAt = now();
    });
    QTimer::singleShot(900, &w, [&] { w.cmdStop->click(); });
    w.cmdPlay->click();
    ASSERT_GE(jumpedAt, 0);
    EXPECT_FALSE(everMarked(&Board::marked60));
    const int shown64 = firstBoard(&Board::marked64, true);
    ASSERT_GE(shown64, 0) << "note 64 sounded from the jump on";
    EXPECT_GE(boardAt(shown64) - sentAt(kOn64), m_heardDelayMs - 50);
    EXPECT_TRUE(boardAtRest());  // and the stop cleared it
}

}  // namespace
}  // namespace tarabix::test
