#pragma once
// The editor's text box (Text1): a QPlainTextEdit that shows the text with
// one block per line and speaks the text-box model to the rest of the
// editor (CR LF line ends, positions counting CR LF as two). Keys are
// turned into the editing rules' actions and applied as undoable edits.
#include "editor/EditCommands.h"
#include "editor/LineTracker.h"
#include <QPlainTextEdit>

namespace kvr {

class SourceEdit : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit SourceEdit(QWidget *parent = nullptr);

    QString ModelText() const;
    int ModelLength() const;
    int ModelPos(int docPos) const;
    int DocPos(int modelPos) const;
    int SelStart() const;
    int SelLength() const;
    void SelectModel(int start, int length);
    // As loaded: no change handling, no undo history.
    void LoadText(const QString &crlfText);
    // As typed: one undo step, change handling runs.
    void ApplyAction(const EditAction &action);
    void SetTabSpaces(int spaces) { m_tabSpaces = spaces; }
    void SetGuideColor(const QColor &color) { m_guideColor = color; viewport()->update(); }
    int WantedColumn() const { return m_wantedColumn; }

signals:
    void Edited();
    void LineTooLong();
    void TooLong();
    void TabToTerminal();
    void NextEditor();
    void HaltRequested();
    void HelpRequested();
    void FocusGained();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    void OnContentsChange(int position, int removed, int added);
    bool Fits(int removed, int added) const { return ModelLength() - removed + added <= MaxTextLength; }
    // Applies `action` when the text can take it; otherwise says why.
    void ApplyIfFits(const EditAction &action);

    LineTracker m_tracker;
    bool m_loading = false;
    int m_revision = -1;
    int m_blockCount = 1;
    int m_tabSpaces = 0;
    int m_wantedColumn = 0;
    QColor m_guideColor;
};

} // namespace kvr
