#include "ui/settings/StyledTextField.h"

#include "ui/settings/InputFrame.h"
#include "ui/settings/SecretLineEdit.h"
#include "ui/settings/SettingsLabel.h"

#include <QLineEdit>
#include <QVBoxLayout>

StyledTextField::StyledTextField(const QString &label, Echo echo, QWidget *parent)
    : QWidget(parent)
    , m_field(echo == Echo::Secure ? new SecretLineEdit(this) : new QLineEdit(this))
    , m_frame(new InputFrame(m_field, this))
    , m_hint(new SettingsLabel(SettingsLabel::Kind::Hint, QString(), this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    auto *caption = new SettingsLabel(SettingsLabel::Kind::Caption, label, this);
    caption->setBuddy(m_field);
    m_field->setAccessibleName(label);
    layout->addWidget(caption);
    layout->addWidget(m_frame);
    layout->addWidget(m_hint);
    m_hint->hide();
    connect(m_field, &QLineEdit::textEdited, this, &StyledTextField::edited);
}

void StyledTextField::setText(const QString &text)
{
    // The cursor and what can be undone are to stay while the user types.
    if (text != m_field->text())
        m_field->setText(text);
}

void StyledTextField::setHint(const QString &hint)
{
    m_hint->setText(hint);
    m_hint->setVisible(!hint.isEmpty());
}

void StyledTextField::setError(const QString &error)
{
    m_frame->setError(error);
}
