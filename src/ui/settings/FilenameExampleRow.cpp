#include "ui/settings/FilenameExampleRow.h"

#include "ui/settings/ElidedLabel.h"
#include "ui/settings/SettingsTheme.h"
#include "ui/settings/SymbolView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

namespace {

constexpr int kStyleWidth = 65;
constexpr int kArrowSize = 9;
constexpr int kPlateHorizontalPadding = 6;
constexpr int kPlateVerticalPadding = 3;

} // namespace

FilenameExampleRow::FilenameExampleRow(const QString &style, const QString &example,
                                       QWidget *parent)
    : QWidget(parent), m_example(new ElidedLabel(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, kPlateVerticalPadding, 0, kPlateVerticalPadding);
    row->setSpacing(8 + kPlateHorizontalPadding);
    auto *label = new QLabel(style, this);
    label->setFont(SettingsTheme::font(11, QFont::Medium));
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setFixedWidth(std::max(kStyleWidth, label->sizeHint().width()));
    m_example->setFont(SettingsTheme::font(10));
    row->addWidget(label);
    row->addWidget(new SymbolView(u"arrow.right"_s, kArrowSize, Tint::Secondary, this));
    row->addWidget(m_example);
    row->addStretch();
    setExample(example);
}

QString FilenameExampleRow::example() const
{
    return m_example->text();
}

void FilenameExampleRow::setExample(const QString &example)
{
    m_example->setText(example);
}

void FilenameExampleRow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor plate = SettingsTheme::color(Tint::Text, palette());
    plate.setAlphaF(0.07F);
    const QRectF rect = QRectF(m_example->geometry())
                            .adjusted(-kPlateHorizontalPadding, -kPlateVerticalPadding,
                                      kPlateHorizontalPadding, kPlateVerticalPadding);
    SettingsTheme::drawPlate(painter, rect, 4, plate, Qt::transparent, 0);
}
