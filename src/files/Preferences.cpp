#include "Preferences.h"

#include "AtomicFile.h"
#include "PrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

static QString usersOwnFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return folder + QStringLiteral("/Kelvard Ferrow Remote Console/ferrow-rcon.ini");
}

/// A pipe would wait for its writer, a device would be replaced by a file.
static QString orNothing(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile() ? QString() : path;
}

/// Before anything is in it: QSettings keeps the rights of a file that is there.
static void makePrivate(const QString &path)
{
    const QString folder = QFileInfo(path).path();
    QFile file(path);
    if (path.isEmpty() || ((path == usersOwnFile() || !QFileInfo::exists(folder)) && !makePrivateFolder(folder)))
        return; // then it cannot be written either
    if (file.exists())
        static_cast<void>(file.setPermissions(AtomicFile::ownerOnly));
    else
        static_cast<void>(file.open(QIODevice::NewOnly | QIODevice::WriteOnly, AtomicFile::ownerOnly));
}

Preferences::Preferences(const QString &fileName)
    : m_settings(orNothing(fileName.isEmpty() ? usersOwnFile() : fileName), QSettings::IniFormat)
{
}

void Preferences::registerDefaults(const QVariantHash &defaults)
{
    m_defaults.insert(defaults);
}

QVariant Preferences::value(const QString &key) const
{
    return m_settings.value(key, m_defaults.value(key));
}

int Preferences::intValue(const QString &key, int lowest, int highest) const
{
    bool isNumber = false;
    qlonglong number = value(key).toLongLong(&isNumber);
    if (!isNumber) // a file edited by hand
        number = m_defaults.value(key).toLongLong();
    return static_cast<int>(std::clamp<qlonglong>(number, lowest, highest));
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    if (!m_isFilePrivate)
        makePrivate(m_settings.fileName());
    m_isFilePrivate = true;
    m_settings.setValue(key, value);
}
