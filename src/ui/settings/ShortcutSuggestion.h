#pragma once

#include <QAbstractButton>

#include <functional>

/// A shortcut to choose with one press, drawn as one wide key cap.
class ShortcutSuggestion : public QAbstractButton {
    Q_OBJECT

public:
    /// keys: the symbols of the modifiers and the key, as they are shown.
    ShortcutSuggestion(const QString &keys, std::function<void()> action,
                       QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
