#include "settings/UploadSettings.h"

#include "settings/KeychainHelper.h"

QString UploadSettings::KeyboardShortcut::displayString() const
{
    QString text;
    for (const KeyModifier modifier : modifiers)
        text += storedText(modifier);
    return text + key.toUpper();
}

QString UploadSettings::password() const
{
    return KeychainHelper::loadPassword().value_or(QString());
}

bool UploadSettings::isValid() const
{
    // The password comes third because reading it asks another process.
    return !hostname.isEmpty() && !username.isEmpty() && !password().isEmpty()
        && !publicURLBase.isEmpty();
}

bool operator<(UploadSettings::KeyboardShortcut::KeyModifier a,
               UploadSettings::KeyboardShortcut::KeyModifier b)
{
    return storedText(a) < storedText(b);
}
