#pragma once

#include "ui/settings/SettingsTheme.h"

#include <QString>
#include <QWidget>

/// A symbol in one of the theme's tints. Decoration: what it says is said in words beside it.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    /// name as for Symbol; size in pixels, of both sides.
    SymbolView(const QString &name, int size, SettingsTheme::Tint tint, QWidget *parent = nullptr);

    const QString &name() const { return m_name; }
    void setSymbol(const QString &name, SettingsTheme::Tint tint);
    /// Puts the symbol on a small square in a pale shade of its tint, as at the head of a card.
    void setPlate(bool hasPlate);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    int m_size;
    SettingsTheme::Tint m_tint;
    bool m_hasPlate = false;
};
