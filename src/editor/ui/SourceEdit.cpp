#include "editor/ui/SourceEdit.h"
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QTextBlock>

namespace kvr {

namespace {
QString ToDocumentText(const QString &crlf)
{
    QString text = crlf;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text;
}
} // namespace

SourceEdit::SourceEdit(QWidget *parent) : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("Text1"));
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setTabChangesFocus(false);
    connect(document(), &QTextDocument::contentsChange, this, &SourceEdit::OnContentsChange);
}

QString SourceEdit::ModelText() const
{
    QString text;
    text.reserve(document()->characterCount() + document()->blockCount());
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block != document()->begin())
            text += QLatin1String("\r\n");
        text += block.text();
    }
    return text;
}

int SourceEdit::ModelLength() const
{
    // characterCount counts one separator per block, the last one included.
    return document()->characterCount() - 1 + document()->blockCount() - 1;
}

int SourceEdit::ModelPos(int docPos) const
{
    const QTextBlock block = document()->findBlock(docPos);
    return docPos + (block.isValid() ? block.blockNumber() : document()->blockCount() - 1);
}

int SourceEdit::DocPos(int modelPos) const
{
    // The last line whose model start is at or before modelPos.
    int low = 0;
    int high = document()->blockCount() - 1;
    while (low < high) {
        const int mid = (low + high + 1) / 2;
        const QTextBlock block = document()->findBlockByNumber(mid);
        if (block.position() + mid <= modelPos)
            low = mid;
        else
            high = mid - 1;
    }
    const QTextBlock block = document()->findBlockByNumber(low);
    const int offset = std::clamp(modelPos - (block.position() + low), 0, block.length() - 1);
    return block.position() + offset;
}

int SourceEdit::SelStart() const
{
    return ModelPos(textCursor().selectionStart());
}

int SourceEdit::SelLength() const
{
    const QTextCursor cursor = textCursor();
    return ModelPos(cursor.selectionEnd()) - ModelPos(cursor.selectionStart());
}

void SourceEdit::SelectModel(int start, int length)
{
    QTextCursor cursor = textCursor();
    cursor.setPosition(DocPos(start));
    if (length > 0)
        cursor.setPosition(DocPos(start + length), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void SourceEdit::LoadText(const QString &crlfText)
{
    m_loading = true;
    setPlainText(ToDocumentText(crlfText));
    m_loading = false;
    m_revision = document()->revision();
    m_blockCount = document()->blockCount();
    moveCursor(QTextCursor::Start);
    m_tracker.Reset(0, textCursor().block().length() - 1);
}

void SourceEdit::ApplyAction(const EditAction &action)
{
    if (action.wantedColumn >= 0)
        m_wantedColumn = action.wantedColumn;
    if (action.changesText) {
        // The edit is made with the caret itself, as typing would: the
        // change handler then measures the line the text went into, not
        // the line the caret came from (Up/Down padding a line above).
        QTextCursor cursor = textCursor();
        cursor.setPosition(DocPos(action.start));
        cursor.setPosition(DocPos(action.start + action.removed), QTextCursor::KeepAnchor);
        setTextCursor(cursor);
        cursor.beginEditBlock();
        cursor.insertText(ToDocumentText(action.inserted));
        cursor.endEditBlock();
        setTextCursor(cursor);
    }
    SelectModel(action.selStart, action.selLength);
}

void SourceEdit::ApplyIfFits(const EditAction &action)
{
    if (action.changesText && !Fits(action.removed, static_cast<int>(action.inserted.size()))) {
        emit TooLong();
        return;
    }
    ApplyAction(action);
}

void SourceEdit::OnContentsChange(int position, int removed, int added)
{
    Q_UNUSED(position);
    // Colouring re-lays blocks out and reports that as a change too; only
    // a new revision is an edit.
    if (m_loading || document()->revision() == m_revision)
        return;
    m_revision = document()->revision();
    const QTextCursor cursor = textCursor();
    const int caret = ModelPos(cursor.position());
    const int blocks = document()->blockCount();
    const bool tooLong = m_tracker.Changed(
        caret, added, removed,
        [&] { return document()->findBlock(cursor.position()).length() - 1; },
        blocks != m_blockCount);
    m_blockCount = blocks;
    emit Edited();
    if (tooLong)
        QMetaObject::invokeMethod(this, &SourceEdit::LineTooLong, Qt::QueuedConnection);
}

void SourceEdit::keyPressEvent(QKeyEvent *event)
{
    const Qt::KeyboardModifiers mods =
        event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    const int key = event->key();
    if (key == Qt::Key_F2) {
        emit HaltRequested();
        return;
    }
    if (key == Qt::Key_F1) {
        emit HelpRequested();
        return;
    }
    if (key == Qt::Key_Backtab || (key == Qt::Key_Tab && mods == Qt::ShiftModifier)) {
        emit NextEditor();
        return;
    }
    if (key == Qt::Key_Tab && mods == Qt::NoModifier) {
        if (m_tabSpaces == 0) {
            emit TabToTerminal();
            return;
        }
        if (const auto action = TabAction(ModelText(), SelStart(), SelLength(), m_tabSpaces))
            ApplyIfFits(*action);
        return;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && !(mods & Qt::ControlModifier)) {
        ApplyIfFits(EnterAction(ModelText(), SelStart(), SelLength()));
        return;
    }
    if ((key == Qt::Key_Up || key == Qt::Key_Down) && mods == Qt::NoModifier) {
        if (const auto action = UpDownAction(ModelText(), SelStart(), SelLength(), key == Qt::Key_Up))
            ApplyIfFits(*action);
        return;
    }
    if (key == Qt::Key_Delete && mods == Qt::NoModifier) {
        if (const auto action = DeleteAction(ModelText(), SelStart(), SelLength()))
            ApplyAction(*action);
        return;
    }
    if (key == Qt::Key_A && mods == Qt::ControlModifier) {
        selectAll();
        return;
    }
    // Ctrl combinations are shortcuts, never text; anything else that would
    // type a character is checked (Alt+Tab still carries a Tab).
    const QString text = event->text();
    if (!text.isEmpty() && !(mods & Qt::ControlModifier)) {
        for (const QChar c : text) {
            if (IsDiscardedChar(c.unicode()) && c.unicode() != 8 && c.unicode() != 13)
                return;
        }
        if (text.at(0).unicode() >= 32 && !Fits(SelLength(), static_cast<int>(text.size()))) {
            emit TooLong();
            return;
        }
    }
    QPlainTextEdit::keyPressEvent(event);
}

void SourceEdit::focusInEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusInEvent(event);
    emit FocusGained();
}

void SourceEdit::paintEvent(QPaintEvent *event)
{
    QPlainTextEdit::paintEvent(event);
    if (!m_guideColor.isValid())
        return;
    QPainter painter(viewport());
    const qreal x = contentOffset().x() + document()->documentMargin()
        + fontMetrics().horizontalAdvance(QString(MaxLineLength, QLatin1Char('M')));
    painter.setPen(m_guideColor);
    painter.drawLine(QPointF(x, 0), QPointF(x, viewport()->height()));
}

void SourceEdit::inputMethodEvent(QInputMethodEvent *event)
{
    // Composed text obeys the same rules as typed characters.
    QString commit = event->commitString();
    commit.removeIf([](QChar c) { return IsDiscardedChar(c.unicode()) || c.unicode() == 8 || c.unicode() == 13; });
    if (!commit.isEmpty() && !Fits(SelLength(), static_cast<int>(commit.size()))) {
        commit.clear();
        emit TooLong();
    }
    if (commit != event->commitString())
        event->setCommitString(commit, event->replacementStart(), event->replacementLength());
    QPlainTextEdit::inputMethodEvent(event);
}

QMimeData *SourceEdit::createMimeDataFromSelection() const
{
    // The document's own export turns a no-break space into a blank; the
    // clipboard carries the selection's characters exactly.
    QString text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    auto *data = new QMimeData;
    data->setText(text);
    return data;
}

void SourceEdit::insertFromMimeData(const QMimeData *source)
{
    if (!source || !source->hasText())
        return;
    QString text = ToCrLf(source->text());
    for (QChar &c : text)
        if (c.unicode() > 255)
            c = QLatin1Char('?');
    if (!Fits(SelLength(), static_cast<int>(text.size()))) {
        emit TooLong();
        return;
    }
    textCursor().insertText(ToDocumentText(text));
    ensureCursorVisible();
}

} // namespace kvr
