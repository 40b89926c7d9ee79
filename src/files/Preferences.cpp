#include "Preferences.h"

#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

static QString usersOwnFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return folder + QStringLiteral("/Kelvard Ferrow Remote Console/ferrow-rcon.ini");
}

/// Before anything is in it: QSettings keeps the rights of a file that is there. What cannot be made here cannot be
/// written by QSettings either.
static void makePrivate(const QString &path)
{
    QFile file(path);
    if (QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::Append))
        static_cast<void>(file.setPermissions(AtomicFile::ownerOnly));
}

Preferences::Preferences(const QString &fileName)
    : m_settings(fileName.isEmpty() ? usersOwnFile() : fileName, QSettings::IniFormat)
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
