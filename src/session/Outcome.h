#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>

/// What became of one thing that was done to the server, or with a file. It never holds a password.
struct Outcome {
    Q_DECLARE_TR_FUNCTIONS(Outcome)
public:
    enum class Kind {
        Command, ///< the server was told to do something
        Setting, ///< a variable was written
        File     ///< something was saved
    };

    Kind kind = Kind::Command;
    QString action = {};      ///< what was done, in the words of its button
    QStringList targets = {}; ///< to whom or to what, by the names that users see
    QString text = {};        ///< what the server said of it in its own words, or why it failed; may be empty
    bool isSuccess = true;
    QDateTime time = {}; ///< when it was known

    /// A file has been written.
    static Outcome saved(const QString &action, const QString &path);

    /// All of it in one line.
    QString summary() const;
};
