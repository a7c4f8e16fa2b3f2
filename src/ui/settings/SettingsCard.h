#pragma once

#include <QString>
#include <QVBoxLayout>
#include <QWidget>

/// A group of settings under a title with a symbol, on a plate of its own.
class SettingsCard : public QWidget {
    Q_OBJECT

public:
    /// icon is the name of a symbol.
    SettingsCard(const QString &title, const QString &icon, QWidget *parent = nullptr);

    /// Where the card's content goes, from top to bottom.
    QVBoxLayout *body() const { return m_body; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *m_body;
};
