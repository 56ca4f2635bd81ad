#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QProcess>
#include <QTemporaryDir>

namespace kvr::board {

// The board's Forth system: gforth running our personality. It is started
// again whenever it ends (COLD ends it on purpose), so the board behaves
// like one that resets.
class ForthProcess : public QObject {
    Q_OBJECT
public:
    ForthProcess(const QString &gforth, const QString &boardType, QObject *parent = nullptr);
    ~ForthProcess() override;

    // An environment variable for the personality (set before Start).
    void SetVariable(const QString &name, const QString &value) { m_variables.insert(name, value); }

    // Unpacks the personality and starts gforth; false with a message when
    // that is not possible.
    bool Start(QString &error);
    // The board's words, one a line, from a run of the personality that
    // ends once it has made them.
    bool ListWords(QByteArray &words, QString &error);
    void Stop();
    void Write(const QByteArray &bytes);
    // Breaks into whatever the Forth system is running.
    void Interrupt();

    // The gforth program to use: the given path or gforth on PATH; empty
    // when there is none.
    static QString FindGforth(const QString &given);

signals:
    void Output(const QByteArray &bytes);
    // The board started waiting for a line (true) or working on one (false).
    void ReadingLine(bool reading);
    // A program on the board reads keys itself: until the next line every
    // byte is its data.
    void ProgramTakesKeys();
    void Restarted();
    // The personality has signed on and waits for its first line.
    void Up();
    // gforth ended before the personality was up: starting it again is no use.
    void Failed(const QString &message);

private:
    bool Unpack(QString &error);
    QProcessEnvironment Environment() const;
    QStringList Arguments() const;
    void Launch();
    void OnFinished();
    void OnStderr();

    QString m_gforth;
    QString m_boardType;
    QMap<QString, QString> m_variables;
    QTemporaryDir m_personality;
    QProcess *m_process = nullptr;
    QByteArray m_pending;      // written while gforth was (re)starting
    bool m_stopping = false;
    bool m_up = false;         // the personality of this run has asked for a line
};

}  // namespace kvr::board
