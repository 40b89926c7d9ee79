#pragma once

#include <QTimer>
#include <QWidget>

class Preferences;
class QCheckBox;
class QSpinBox;

/// "Refresh every … s": calls again and again while it is ticked. Tick and seconds are kept in the preferences, under
/// the object names of their controls.
class RefreshTimer : public QWidget
{
    Q_OBJECT
public:
    struct Names {
        QString isOn;
        QString seconds;
        QString timer;
        QString interval; ///< what a screen reader calls the seconds
    };

    /// `preferences` outlives the timer, which does not run before restart() or an edit.
    RefreshTimer(Preferences &preferences, const Names &names, QWidget *parent = nullptr);

    /// Counts anew from now, if it is ticked.
    void restart();
    void stop() { m_timer.stop(); }

signals:
    void due();

private:
    QCheckBox *m_isOn;
    QSpinBox *m_seconds;
    QTimer m_timer{this};
};
