#pragma once

#include <QLabel>

/// Shows a chat message as players will see it, with the names of the colours before what they colour, so that nothing
/// depends on seeing them.
class ColorPreview : public QLabel
{
    Q_OBJECT
public:
    explicit ColorPreview(QWidget *parent = nullptr);

    /// @param message  with its colour codes; empty shows a hint.
    void showMessage(const QString &message);

    QSize minimumSizeHint() const override { return {0, QLabel::sizeHint().height()}; }
};
