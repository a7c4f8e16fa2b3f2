#pragma once

#include <QPushButton>

class Spinner;

/// A button with a symbol and a text.
class ActionButton : public QPushButton {
    Q_OBJECT

public:
    enum class Kind {
        Bordered,
        Prominent, ///< White on the accent colour.
    };

    /// symbol is a symbol's name, or empty.
    ActionButton(Kind kind, const QString &symbol, const QString &text, QWidget *parent = nullptr);

    /// Shows a spinner in the symbol's place.
    void setBusy(bool isBusy);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QRect symbolRect() const;

    Kind m_kind;
    QString m_symbol;
    Spinner *m_spinner;
};
