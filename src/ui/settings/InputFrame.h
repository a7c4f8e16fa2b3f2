#pragma once

#include <QLineEdit>
#include <QWidget>

class SymbolView;

/// The frame around a field: it shows where the keyboard is, and that something is wrong.
class InputFrame : public QWidget {
    Q_OBJECT

public:
    /// Takes the field over as its child.
    explicit InputFrame(QLineEdit *field, QWidget *parent = nullptr);

    /// Says why the field's text is of no use; empty: it is. Outline, symbol and tooltip tell it.
    void setError(const QString &error);
    const QString &error() const { return m_error; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLineEdit *m_field;
    SymbolView *m_errorSymbol;
    QString m_error;
};
