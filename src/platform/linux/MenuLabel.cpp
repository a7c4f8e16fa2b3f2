#include "platform/linux/MenuLabel.h"

using namespace Qt::StringLiterals;

QString MenuLabel::forMenu(const QString &text, const QString &caption)
{
    QString label = text;
    label.replace(u'&', "&&"_L1);
    // What follows a tab stands in the column of the shortcuts.
    return caption.isEmpty() ? label : label + u'\t' + caption;
}

QString MenuLabel::forPanel(const QString &text, const QString &caption)
{
    QString label = text;
    // On D-Bus an underscore marks the mnemonic, and two are one that is meant.
    label.replace(u'_', "__"_L1);
    return caption.isEmpty() ? label : label + "  "_L1 + caption;
}
