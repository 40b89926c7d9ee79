#pragma once

#include <QString>

/// What other processes get to see of this one.
class ProcessPrivacy
{
public:
    ProcessPrivacy() = delete;

    /// The value of an environment variable, which is removed: from the environment of what is started from here, and
    /// from the copy of the start that the system shows to the user's other processes. Before any thread is started.
    static QString takeFromEnvironment(const char *name);

    /// No core dump is written, and no other process of the user reads the memory: passwords are in it. Only in release
    /// builds, and not with FERROW_RCON_DUMPS=1 in the environment, so that debugging stays possible.
    static void forbidDumps();
};
