#pragma once

#include <QLineEdit>

class QMenu;

/// The field for a message that is sent at once; its context menu inserts the game's colour codes.
class QuickMessageField : public QLineEdit
{
    Q_OBJECT
public:
    using QLineEdit::QLineEdit;

    /// Puts the code of a colour, a digit, where the text cursor is.
    void insertColorCode(int digit);
    /// Adds an entry for each colour to `menu`.
    void addColorCodes(QMenu &menu);

protected:
    void contextMenuEvent(QContextMenuEvent *event) override;
};
