#pragma once

#include <QLabel>

/// Names the characters of a text that the game cannot show, below the field where the text is typed; hidden while
/// there are none.
class UnsendableLabel : public QLabel
{
    Q_OBJECT
public:
    explicit UnsendableLabel(QWidget *parent = nullptr);

    /// For a dialog, which would squeeze its fields when the label appears: takes the room of two lines, hidden or not.
    void keepRoom();

    /// @return whether all of `text` can be sent, typographic signs among it as plain ones.
    bool judge(const QString &text);
};
