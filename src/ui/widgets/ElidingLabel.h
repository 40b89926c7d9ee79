#pragma once

#include <QLabel>

/// A label of one line that never asks for room: what does not fit ends in an ellipsis, and a tooltip holds all of it.
class ElidingLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidingLabel(QWidget *parent = nullptr);

    void showText(const QString &text);
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
