#pragma once

#include <QIcon>
#include <QLabel>

/// A line of the menu window that only tells something: with a symbol it stands out, without one it
/// is a caption. Wraps wherever it must, so that all of a long status can be read.
class MenuText : public QLabel {
    Q_OBJECT

public:
    explicit MenuText(QWidget *parent = nullptr);

    /// icon may be null.
    void setLine(const QString &text, const QIcon &icon);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QIcon m_icon;
};
