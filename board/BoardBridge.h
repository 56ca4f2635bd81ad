#pragma once

#include "BoardFront.h"
#include "ForthProcess.h"
#include "LineLog.h"
#include "WireModel.h"

#include <QElapsedTimer>

namespace kvr::board {

// Carries bytes between the PC's end (TCP or pseudo-terminal) and the Forth
// system, modelling the wire on the way.
class BoardBridge : public QObject {
    Q_OBJECT
public:
    BoardBridge(BoardFront &front, ForthProcess &forth, int baud, int charTimeUs, LineLog *log,
                QObject *parent = nullptr);

private:
    void FromPc(const QByteArray &chunk);
    void FromForth(const QByteArray &bytes);

    BoardFront &m_front;
    ForthProcess &m_forth;
    LineLog *m_log;
    CharacterFilter m_filter;
    OutputPacer m_pacer;
    QElapsedTimer m_clock;
    bool m_forthReading = true;   // the board waits for a line
    bool m_lineSent = false;      // a line ended since the board last said it waits
    bool m_programKeys = false;   // a program reads the bytes itself: no break
};

}  // namespace kvr::board
