#pragma once

#include "DemoOptions.h"

#include <QStringList>

/// What the command line of the stand-alone simulated server asks for.
struct DemoCommandLine {
    enum class Task { Serve, ShowText, Refuse };

    Task task = Task::Serve;
    DemoOptions options; ///< with Serve
    QString text;        ///< with ShowText what to show, with Refuse what is wrong

    /// @param arguments            the program's own name first.
    /// @param environmentPassword  the password from the environment; empty when none is set there.
    static DemoCommandLine parse(const QStringList &arguments, const QString &environmentPassword);
};
