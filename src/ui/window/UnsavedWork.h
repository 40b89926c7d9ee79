#pragma once

#include "Rotations.h"

#include <QCoroTask>

#include <QObject>

class MainTabs;

/// What would be lost when the window closes or another server is connected to: rotations that no file holds yet.
class UnsavedWork
{
public:
    /// Both outlive this.
    UnsavedWork(MainTabs &tabs, const Rotations &rotations);

    /// What is being typed into a rotation counts from now on.
    void finishEditing();
    bool isAny() const;
    /// What is unsaved now may be lost; what comes later counts again.
    void giveUp() { m_isGivenUp = true; }
    /// Asks about it, and saves what the user wants to keep. @return whether to go on.
    QCoro::Task<bool> settle();

private:
    MainTabs &m_tabs;
    Rotations m_rotations;
    QObject m_context; ///< ends the connections
    bool m_isGivenUp = false;
};
