#pragma once

#include <QWidget>

class QVBoxLayout;
class SettingsCard;

/// What the pages have in common: a stack of cards, from top to bottom.
class SettingsPage : public QWidget {
    Q_OBJECT

public:
    explicit SettingsPage(QWidget *parent = nullptr);

    /// Makes the next card; icon is the name of a symbol.
    SettingsCard *addCard(const QString &title, const QString &icon);

    /// Where the keyboard is to begin when the window opens with this page; null: nowhere. (A focus
    /// proxy would be a stop of the Tab key of its own.)
    QWidget *firstField() const { return m_firstField; }

protected:
    void setFirstField(QWidget *field) { m_firstField = field; }

private:
    QVBoxLayout *m_stack;
    QWidget *m_firstField = nullptr;
};
