#pragma once

#include <QWidget>

#include <cstdint>
#include <optional>

class InputFrame;
class QLineEdit;

/// A field for a whole number under its caption. What is typed counts at once as long as it is
/// within the limits. While the field is empty or out of them it shows an error, and the value is
/// the one from before the typing began, which also comes back into the field once the user leaves
/// it. Digits are never grouped; pasted grouping and blanks are dropped, all else is refused.
class StyledNumberField : public QWidget {
    Q_OBJECT

public:
    StyledNumberField(const QString &label, std::int64_t minimum, std::int64_t maximum,
                      QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    /// Shows value as it is, also outside of the limits, with an error then.
    void setValue(std::int64_t value);

Q_SIGNALS:
    /// The user has changed the value; it is within the limits, or the one from before.
    void edited(std::int64_t value);

private:
    void takeText(const QString &text);
    void finish();
    void showValue();
    bool isWithinLimits(std::int64_t value) const;
    QString errorText() const;

    std::int64_t m_minimum;
    std::int64_t m_maximum;
    std::int64_t m_value = 0;
    std::optional<std::int64_t> m_valueBeforeTyping; ///< Absent while nobody types.
    QLineEdit *m_field;
    InputFrame *m_frame;
};

/// The digits in text as a person may paste them ("2,200", " 22 "), without blanks and grouping;
/// absent when it is something else. Empty stays empty.
std::optional<QString> plainDigits(const QString &text);
