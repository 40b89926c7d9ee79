#pragma once

#include <QObject>

class QWidget;

/// Makes the desktop's font the application's, in the form that is quickest to draw: without the shaping that only
/// scripts need which Qt shapes anyway, and under the name of the family that the desktop's stands for. On macOS it
/// leaves the font alone. Main thread only.
class ApplicationFont : public QObject
{
    Q_OBJECT

public:
    /// @param sansSerif the family that "Sans Serif" stands for, what Qt is given by a desktop that has chosen no font;
    /// empty if it is not known
    explicit ApplicationFont(QString sansSerif, QObject *parent = nullptr);

    /// Follows the desktop's choice, of which `window` hears.
    void follow(QWidget &window);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void apply();

    QString m_sansSerif;
};
