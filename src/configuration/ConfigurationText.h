#pragma once

#include "ConfigurationFile.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

class DvarSettingList;

/// What a configuration file is written from. Main thread only.
struct ConfigurationContent {
    QList<std::shared_ptr<DvarSettingList>> groups;    ///< of settings, in the order of the file
    QList<std::shared_ptr<DvarSettingList>> gametypes; ///< in the order of the file, after the groups
    QHash<QString, QString> dvars;                     ///< name to value as the session holds it
};

/// The configuration file of `content`: UTF-8, every line ended by a line feed. The server's name and its password are
/// never in it, nor is a variable that the server has not reported. `dateText` stands in its head.
QByteArray configurationText(const ConfigurationContent &content, const QString &dateText);

/// The variables that configurationText() writes, each once, in the order of the file.
QList<ConfigurationEntry> writtenEntries(const ConfigurationContent &content);

/// The variables of the groups and gametypes that would be in the file if the server told all of them, each once.
QStringList neededDvars(const ConfigurationContent &content);

/// Writes the configuration to `path`. Replaces the file whole: on failure an older file is as it was.
/// @return whether it is written; otherwise `error`, if given, tells why.
[[nodiscard]] bool saveConfiguration(const ConfigurationContent &content, const QString &path,
                                     QString *error = nullptr);
