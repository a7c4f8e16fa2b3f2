#pragma once

#include <QLabel>

class QPainter;

/// One key, drawn as a cap.
class KeyCap : public QLabel {
    Q_OBJECT

public:
    /// key as for KeyNames.
    explicit KeyCap(const QString &key, QWidget *parent = nullptr);

    const QString &key() const { return m_key; }

    /// The colour of caps: lighter than what they stand on, in the dark too.
    static QColor fill(const QPalette &palette);
    /// The plate of a cap with its shadow, inside rect.
    static void drawPlate(QPainter &painter, const QRectF &rect, const QColor &fill,
                          const QPalette &palette);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_key;
};
