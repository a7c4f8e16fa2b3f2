#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QAbstractButton;

/// A row of choices in one frame, of which exactly one is selected.
class SegmentedSelector : public QWidget {
    Q_OBJECT

public:
    /// name is what a screen reader calls the choice between texts.
    SegmentedSelector(const QString &name, const QStringList &texts, QWidget *parent = nullptr);

    /// The index of the selected choice.
    int selection() const { return m_selection; }
    void setSelection(int index);

    QAbstractButton *button(int index) const;

Q_SIGNALS:
    /// The user has selected the choice with that index.
    void selected(int index);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::vector<QAbstractButton *> m_buttons;
    int m_selection = 0;
};
