#include "Preferences.h"

#include <QStandardPaths>

#include <algorithm>

static QString usersOwnFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return folder + QStringLiteral("/Kelvard Ferrow Remote Console/ferrow-rcon.ini");
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
    m_settings.setValue(key, value);
}
