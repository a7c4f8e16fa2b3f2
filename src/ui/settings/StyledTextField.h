#pragma once

#include <QWidget>

class InputFrame;
class QLabel;
class QLineEdit;

/// A text field under its caption, with a hint below it if there is one.
class StyledTextField : public QWidget {
    Q_OBJECT

public:
    enum class Echo {
        Normal,
        Secure, ///< A SecretLineEdit.
    };

    explicit StyledTextField(const QString &label, Echo echo = Echo::Normal,
                             QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    void setText(const QString &text);
    /// Empty: no hint.
    void setHint(const QString &hint);
    /// Why the text is of no use; empty when it is.
    void setError(const QString &error);

Q_SIGNALS:
    /// The user has changed the text.
    void edited(const QString &text);

private:
    QLineEdit *m_field;
    InputFrame *m_frame;
    QLabel *m_hint;
};
