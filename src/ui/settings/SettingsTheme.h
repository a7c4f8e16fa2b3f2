#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QPainter;
class QRectF;
class QWidget;

/// The colours and fonts of the settings window, all of them made from the desktop's own. Colours
/// are asked for anew at each painting, so that they follow a change of the desktop's.
namespace SettingsTheme {

/// What a symbol or a text says by its colour, always besides its shape or words.
enum class Tint {
    Text,
    Secondary, ///< Captions and hints; legible like all text.
    Accent,
    OnAccent, ///< Upon a surface in the accent colour.
    Green,
    Red,
    Orange,
};

/// The desktop's palette made fit for the window: secondary text as PlaceholderText, and the
/// accent, on which white is legible, as Highlight. For the window, whose controls inherit it.
QPalette palette(const QPalette &desktop);

QColor cardBackground(const QPalette &palette);
QColor inputBackground(const QPalette &palette);
/// Of cards, fields and dividers.
QColor borderColor(const QPalette &palette);
/// Of surfaces that carry white text.
QColor accent(const QPalette &palette);
/// For drawing and writing on a card.
QColor color(Tint tint, const QPalette &palette);

/// The ratio between the lighter and the darker of the two: 1 to 21.
double contrast(const QColor &one, const QColor &other);

/// The desktop's font, size pixels high where its own is of the usual 13, and a little larger where
/// the user has chosen a larger one.
QFont font(double size, QFont::Weight weight = QFont::Normal);

/// A surface with round corners and an outline, inside rect.
void drawPlate(QPainter &painter, const QRectF &rect, double radius, const QColor &fill,
               const QColor &outline, double outlineWidth = 1);

/// Whether widget is to be drawn as having the keyboard: not while only the mouse is used.
bool showsFocus(const QWidget &widget);

/// The mark of the keyboard's focus around a control: a ring at the inside of rect.
void drawFocusRing(QPainter &painter, const QRectF &rect, double radius, const QPalette &palette);

} // namespace SettingsTheme
