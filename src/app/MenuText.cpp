#include "app/MenuText.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>

namespace {

constexpr int kSymbolSize = 16;
constexpr int kGap = 6;
/// Longer words are paths or addresses, which may be broken anywhere.
constexpr int kLongestWord = 16;
constexpr QChar kZeroWidthSpace = QChar(0x200B);

QString breakable(const QString &text)
{
    QString result;
    int wordLength = 0;
    for (const QChar character : text) {
        wordLength = character.isSpace() ? 0 : wordLength + 1;
        // Not between the halves of one character.
        if (wordLength > kLongestWord && !character.isLowSurrogate() && !character.isMark())
            result += kZeroWidthSpace;
        result += character;
    }
    return result;
}

} // namespace

MenuText::MenuText(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
}

void MenuText::setLine(const QString &text, const QIcon &icon)
{
    m_icon = icon;
    const bool isCaption = icon.isNull();
    setFont(SettingsTheme::font(isCaption ? 11 : 13));
    setForegroundRole(isCaption ? QPalette::PlaceholderText : QPalette::WindowText);
    setContentsMargins(isCaption ? 0 : kSymbolSize + kGap, 0, 0, 0);
    setText(breakable(text));
    setAccessibleName(text);
    update();
}

void MenuText::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    if (m_icon.isNull())
        return;
    QPainter painter(this);
    const QSize size(kSymbolSize, kSymbolSize);
    const QPoint place(0, (fontMetrics().height() - kSymbolSize) / 2);
    painter.drawPixmap(QRect(place, size), m_icon.pixmap(size, devicePixelRatioF()));
}
