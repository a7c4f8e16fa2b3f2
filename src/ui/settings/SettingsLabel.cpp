#include "ui/settings/SettingsLabel.h"

#include "ui/settings/SettingsTheme.h"

#include <QFontDatabase>

using namespace Qt::StringLiterals;

SettingsLabel::SettingsLabel(Kind kind, const QString &text, QWidget *parent) : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    switch (kind) {
    case Kind::Caption: {
        QFont font = SettingsTheme::font(11, QFont::Medium);
        // Drawn as capitals only, so that screen readers do not spell it.
        font.setCapitalization(QFont::AllUppercase);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.5);
        setFont(font);
        setForegroundRole(QPalette::PlaceholderText);
        break;
    }
    case Kind::Text:
        setFont(SettingsTheme::font(12));
        break;
    case Kind::Hint:
        setFont(SettingsTheme::font(11));
        setForegroundRole(QPalette::PlaceholderText);
        setWordWrap(true);
        break;
    case Kind::Fixed: {
        QFont font = SettingsTheme::font(12);
        font.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
        setFont(font);
        break;
    }
    }
}
