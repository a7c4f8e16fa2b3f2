#pragma once

#include <QLineEdit>

/// A field for a secret: dots, of which nothing can be copied, cut, dragged away or undone.
class SecretLineEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit SecretLineEdit(QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void forgetHistory(const QString &text);
};
