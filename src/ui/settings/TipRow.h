#pragma once

#include <QWidget>

/// A piece of advice beside a symbol.
class TipRow : public QWidget {
    Q_OBJECT

public:
    /// icon is the name of a symbol.
    TipRow(const QString &icon, const QString &text, QWidget *parent = nullptr);
};
