#pragma once

#include <QLineEdit>

/// Where the user types what a list is to be narrowed to, with a button that empties it.
class FilterField : public QLineEdit
{
    Q_OBJECT
public:
    /// @param name  what it filters: shown while it is empty, and its accessible name.
    explicit FilterField(const QString &name, QWidget *parent = nullptr);
};
