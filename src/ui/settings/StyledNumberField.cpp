#include "ui/settings/StyledNumberField.h"

#include "ui/settings/InputFrame.h"
#include "ui/settings/SettingsLabel.h"

#include <QLineEdit>
#include <QVBoxLayout>
#include <QValidator>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFrameWidth = 80;

/// Lets only digits in, few enough to be a number.
class DigitsValidator final : public QValidator {
public:
    DigitsValidator(qsizetype length, QObject *parent) : QValidator(parent), m_length(length) { }

    State validate(QString &text, int &position) const override
    {
        const std::optional<QString> digits = plainDigits(text);
        if (!digits || digits->size() > m_length)
            return Invalid;
        if (*digits != text) {
            text = *digits;
            position = static_cast<int>(text.size());
        }
        return Acceptable;
    }

private:
    qsizetype m_length;
};

} // namespace

StyledNumberField::StyledNumberField(const QString &label, std::int64_t minimum,
                                     std::int64_t maximum, QWidget *parent)
    : QWidget(parent)
    , m_minimum(minimum)
    , m_maximum(maximum)
    , m_field(new QLineEdit(this))
    , m_frame(new InputFrame(m_field, this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    auto *caption = new SettingsLabel(SettingsLabel::Kind::Caption, label, this);
    caption->setBuddy(m_field);
    m_field->setAccessibleName(label);
    m_field->setInputMethodHints(Qt::ImhDigitsOnly);
    m_field->setValidator(new DigitsValidator(QString::number(maximum).size(), m_field));
    m_frame->setFixedWidth(kFrameWidth);
    layout->addWidget(caption);
    layout->addWidget(m_frame);
    showValue();
    connect(m_field, &QLineEdit::textEdited, this, &StyledNumberField::takeText);
    connect(m_field, &QLineEdit::editingFinished, this, &StyledNumberField::finish);
}

void StyledNumberField::setValue(std::int64_t value)
{
    if (value == m_value)
        return;
    m_value = value;
    m_valueBeforeTyping.reset();
    showValue();
}

void StyledNumberField::takeText(const QString &text)
{
    if (!m_valueBeforeTyping)
        m_valueBeforeTyping = m_value;
    bool isNumber = false;
    const std::int64_t typed = text.toLongLong(&isNumber);
    const bool counts = isNumber && isWithinLimits(typed);
    m_frame->setError(counts ? QString() : errorText());
    m_value = counts ? typed : *m_valueBeforeTyping;
    Q_EMIT edited(m_value);
}

void StyledNumberField::finish()
{
    m_valueBeforeTyping.reset();
    showValue();
}

void StyledNumberField::showValue()
{
    const QString text = QString::number(m_value);
    if (text != m_field->text())
        m_field->setText(text);
    m_frame->setError(isWithinLimits(m_value) ? QString() : errorText());
}

bool StyledNumberField::isWithinLimits(std::int64_t value) const
{
    return value >= m_minimum && value <= m_maximum;
}

QString StyledNumberField::errorText() const
{
    return u"Enter a number from %1 to %2"_s.arg(QString::number(m_minimum),
                                                 QString::number(m_maximum));
}

std::optional<QString> plainDigits(const QString &text)
{
    QString digits;
    qsizetype groupSize = 0;
    bool isGrouped = false;
    for (const QChar character : text.trimmed()) {
        if (character.isDigit()) {
            digits += QChar(u'0' + character.digitValue());
            ++groupSize;
            continue;
        }
        // The first group has one to three digits, all others have three.
        const bool endsGroup = isGrouped ? groupSize == 3 : groupSize >= 1 && groupSize <= 3;
        if (!endsGroup || !(character.isSpace() || u".,'’"_s.contains(character)))
            return std::nullopt;
        isGrouped = true;
        groupSize = 0;
    }
    if (isGrouped && groupSize != 3)
        return std::nullopt;
    return digits;
}
