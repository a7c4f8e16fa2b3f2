#include "ui/settings/SegmentedSelector.h"

#include "ui/settings/SettingsTheme.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

using SettingsTheme::Tint;

namespace {

constexpr double kRadius = 6;
constexpr int kDividerHeight = 16;
constexpr int kInset = 2;

/// One choice. A radio button by nature, so that arrow keys and screen readers know what it is.
class Segment final : public QRadioButton {
public:
    Segment(const QString &text, QWidget *parent) : QRadioButton(text, parent)
    {
        setFont(SettingsTheme::font(12, QFont::Medium));
        setAccessibleName(text);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(text()) + 16, fontMetrics().height() + 9};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint &position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QColor fill = SettingsTheme::accent(palette());
        if (!isChecked()) {
            fill = SettingsTheme::color(Tint::Text, palette());
            fill.setAlphaF(isDown() ? 0.12F : underMouse() ? 0.06F : 0);
        }
        SettingsTheme::drawPlate(painter, rect(), kRadius - kInset, fill, Qt::transparent, 0);
        if (SettingsTheme::showsFocus(*this) && isChecked())
            SettingsTheme::drawPlate(painter, QRectF(rect()).adjusted(2, 2, -2, -2),
                                     kRadius - kInset - 1, Qt::transparent, Qt::white, 1.5);
        else if (SettingsTheme::showsFocus(*this))
            SettingsTheme::drawFocusRing(painter, rect(), kRadius - kInset, palette());
        painter.setPen(SettingsTheme::color(isChecked() ? Tint::OnAccent : Tint::Text, palette()));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

} // namespace

SegmentedSelector::SegmentedSelector(const QString &name, const QStringList &texts, QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(kInset, kInset, kInset, kInset);
    row->setSpacing(2 * kInset + 1);
    for (int index = 0; index < static_cast<int>(texts.size()); ++index) {
        auto *button = new Segment(texts.at(index), this);
        row->addWidget(button, button->sizeHint().width());
        m_buttons.push_back(button);
        connect(button, &QAbstractButton::clicked, this, [this, index] {
            if (index == m_selection)
                return;
            setSelection(index);
            Q_EMIT selected(index);
        });
    }
    setSelection(0);
}

void SegmentedSelector::setSelection(int index)
{
    m_selection = index;
    button(index)->setChecked(true);
    // The Tab key stops at the selected choice, from which the arrow keys lead to the others.
    for (QAbstractButton *other : m_buttons)
        other->setFocusPolicy(other == button(index) ? Qt::StrongFocus : Qt::ClickFocus);
}

QAbstractButton *SegmentedSelector::button(int index) const
{
    return m_buttons.at(static_cast<std::size_t>(index));
}

void SegmentedSelector::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor border = SettingsTheme::borderColor(palette());
    SettingsTheme::drawPlate(painter, rect(), kRadius, SettingsTheme::inputBackground(palette()),
                             border);
    for (std::size_t index = 1; index < m_buttons.size(); ++index) {
        const int x = m_buttons.at(index)->geometry().left() - kInset - 1;
        painter.fillRect(x, (height() - kDividerHeight) / 2, 1, kDividerHeight, border);
    }
}
