#pragma once

#include <QLabel>

/// A text of the settings window in one of its few styles.
class SettingsLabel : public QLabel {
    Q_OBJECT

public:
    enum class Kind {
        Caption, ///< Over a control: small, spaced capitals, secondary.
        Text,
        Hint, ///< Small and secondary; wraps.
        Fixed, ///< Values, in letters of one width.
    };

    SettingsLabel(Kind kind, const QString &text, QWidget *parent = nullptr);
};
