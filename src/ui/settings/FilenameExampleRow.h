#pragma once

#include <QWidget>

class ElidedLabel;

/// What a naming style makes of a file: the style, an arrow, and a name.
class FilenameExampleRow : public QWidget {
    Q_OBJECT

public:
    FilenameExampleRow(const QString &style, const QString &example, QWidget *parent = nullptr);

    QString example() const;
    void setExample(const QString &example);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    ElidedLabel *m_example;
};
