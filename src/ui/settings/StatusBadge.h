#pragma once

#include "ui/settings/SettingsTheme.h"

#include <QString>
#include <QWidget>

class QLabel;
class Spinner;
class SymbolView;

/// A short message of the window, with a symbol that says what kind it is.
class StatusBadge : public QWidget {
    Q_OBJECT

public:
    enum class Status { success, error, loading, warning };

    explicit StatusBadge(QWidget *parent = nullptr);

    Status status() const { return m_status; }
    QString message() const;
    /// Shows itself with message, of one line, and tells it to those who cannot see it.
    void setMessage(Status status, const QString &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void colorMessage();

    Status m_status = Status::warning;
    SymbolView *m_symbol;
    Spinner *m_spinner;
    QLabel *m_message;
};

/// How the window's message after saving or testing is shown. A failure counts as a warning too.
StatusBadge::Status statusOfMessage(const QString &message);
