#include "ui/settings/KeyNames.h"

#include "settings/UploadSettings.h"

using namespace Qt::StringLiterals;
using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;

namespace {

QString nameOf(KeyModifier modifier)
{
    switch (modifier) {
    case KeyModifier::command:
        return u"Super"_s;
    case KeyModifier::shift:
        return u"Shift"_s;
    case KeyModifier::option:
        return u"Alt"_s;
    case KeyModifier::control:
        return u"Ctrl"_s;
    }
    Q_UNREACHABLE();
}

struct InvisibleKey {
    QString key;
    QString sign;
    QString name;
};

/// The entry of a key that types nothing visible; null for others.
const InvisibleKey *invisible(const QString &key)
{
    static const InvisibleKey all[] = {
        {u" "_s, u"␣"_s, u"Space"_s},      {u"\t"_s, u"⇥"_s, u"Tab"_s},
        {u"\r"_s, u"↩"_s, u"Return"_s},    {u"\x1b"_s, u"⎋"_s, u"Escape"_s},
        {u"\b"_s, u"⌫"_s, u"Backspace"_s}, {u"\x7f"_s, u"⌦"_s, u"Delete"_s},
    };
    for (const InvisibleKey &entry : all) {
        if (entry.key == key)
            return &entry;
    }
    return nullptr;
}

} // namespace

QString KeyNames::drawn(const QString &key)
{
    const InvisibleKey *const entry = invisible(key);
    return entry ? entry->sign : key.toUpper();
}

QString KeyNames::said(const QString &key)
{
    if (const auto modifier = fromStoredText<KeyModifier>(key))
        return nameOf(*modifier);
    const InvisibleKey *const entry = invisible(key);
    return entry ? entry->name : key.toUpper();
}

QString KeyNames::said(const QStringList &keys)
{
    QStringList names;
    for (const QString &key : keys)
        names << said(key);
    return names.join(u'+');
}

QString KeyNames::explanation(const QStringList &keys)
{
    QStringList parts;
    for (const QString &key : keys) {
        if (fromStoredText<KeyModifier>(key))
            parts << QString(key + u' ' + said(key));
    }
    return parts.join(u", "_s);
}
