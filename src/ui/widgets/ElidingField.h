#pragma once

#include <QLineEdit>

/// One line of text to read and to copy. What does not fit ends in an ellipsis until the field is clicked.
class ElidingField : public QLineEdit
{
    Q_OBJECT
public:
    explicit ElidingField(QWidget *parent = nullptr);

    /// Shows `text` from its beginning; a tooltip holds all of it.
    void showText(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;
};
