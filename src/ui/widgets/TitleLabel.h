#pragma once

class QLabel;
class QString;
class QWidget;

/// A caption for `control`, whose parent owns it: its mnemonic, if it has one, leads to the control.
QLabel *titleOf(const QString &text, QWidget *control);
