#include "ui/Symbol.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>

#include <map>
#include <optional>

using namespace Qt::StringLiterals;

// The linker drops a static library's resources unless somebody asks for them.
static void initResources()
{
    Q_INIT_RESOURCE(symbols);
}

namespace {

QColor colorOf(Symbol::Tint tint)
{
    switch (tint) {
    case Symbol::Tint::Neutral:
        return {0x75, 0x75, 0x75};
    case Symbol::Tint::Green:
        return {0x2e, 0x9e, 0x4f};
    }
    Q_UNREACHABLE();
}

/// Draws one file, in one colour if a tint is given.
class SymbolIconEngine final : public QIconEngine {
public:
    SymbolIconEngine(const QString &file, std::optional<Symbol::Tint> tint)
        : m_file(file), m_tint(tint)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        QSvgRenderer(m_file).render(&painter, QRectF(QPointF(), QSizeF(size)));
        if (m_tint) {
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), colorOf(*m_tint));
        }
        painter.end();
        return QPixmap::fromImage(std::move(image));
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        // What trays and menus ask for; others are drawn on demand.
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}};
    }

    QIconEngine *clone() const override { return new SymbolIconEngine(*this); }

private:
    QString m_file;
    std::optional<Symbol::Tint> m_tint;
};

} // namespace

QIcon Symbol::icon(const QString &name, Tint tint)
{
    initResources();
    // The same icon object each time, so that a menu sees that it has not changed.
    static std::map<std::pair<QString, Tint>, QIcon> icons;
    QIcon &icon = icons[{name, tint}];
    if (icon.isNull()) {
        const QString file = u":/symbols/"_s + name + u".svg"_s;
        if (QFile::exists(file))
            icon = QIcon(new SymbolIconEngine(file, tint));
    }
    return icon;
}

QIcon Symbol::menuBarIcon()
{
    initResources();
    return QIcon(new SymbolIconEngine(u":/symbols/MenuBarIcon.svg"_s, std::nullopt));
}
