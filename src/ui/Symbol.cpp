#include "ui/Symbol.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
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

/// The drawing in file, size pixels large, in one colour if color is valid.
QImage drawn(const QString &file, const QSize &size, const QColor &color)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(file).render(&painter, QRectF(QPointF(), QSizeF(size)));
    if (color.isValid()) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), color);
    }
    return image;
}

QString fileOf(const QString &name)
{
    return u":/symbols/"_s + name + u".svg"_s;
}

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
        return QPixmap::fromImage(drawn(m_file, size, m_tint ? colorOf(*m_tint) : QColor()));
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
        const QString file = fileOf(name);
        if (QFile::exists(file))
            icon = QIcon(new SymbolIconEngine(file, tint));
    }
    return icon;
}

void Symbol::draw(QPainter &painter, const QString &name, const QRectF &rect, const QColor &color)
{
    initResources();
    const double scale = painter.device()->devicePixelRatioF();
    const QSize size = (rect.size() * scale).toSize();
    const QString key =
        u"symbol %1 %2 %3"_s.arg(name, color.name(QColor::HexArgb)).arg(size.width());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        if (!QFile::exists(fileOf(name)))
            return;
        pixmap = QPixmap::fromImage(drawn(fileOf(name), size, color));
        pixmap.setDevicePixelRatio(scale);
        QPixmapCache::insert(key, pixmap);
    }
    painter.drawPixmap(rect.topLeft(), pixmap);
}

QIcon Symbol::menuBarIcon()
{
    initResources();
    return QIcon(new SymbolIconEngine(u":/symbols/MenuBarIcon.svg"_s, std::nullopt));
}
