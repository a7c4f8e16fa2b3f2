#include "ui/settings/SecretLineEdit.h"

#include <QKeyEvent>
#include <QSignalBlocker>

SecretLineEdit::SecretLineEdit(QWidget *parent) : QLineEdit(parent)
{
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhHiddenText | Qt::ImhNoPredictiveText
                        | Qt::ImhNoAutoUppercase);
    connect(this, &QLineEdit::textEdited, this, &SecretLineEdit::forgetHistory);
}

void SecretLineEdit::keyPressEvent(QKeyEvent *event)
{
    // Unseen, undoing would clear the whole text, and cutting would delete without a copy.
    for (const auto key : {QKeySequence::Undo, QKeySequence::Redo, QKeySequence::Cut}) {
        if (event->matches(key)) {
            event->accept();
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

void SecretLineEdit::forgetHistory(const QString &text)
{
    // A text that is set has no history.
    const QSignalBlocker blocker(this);
    const int cursor = cursorPosition();
    setText(text);
    setCursorPosition(cursor);
}
