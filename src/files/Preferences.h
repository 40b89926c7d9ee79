#pragma once

#include <QHash>
#include <QSettings>
#include <QVariant>

/// What the user has set, kept between runs. Main thread only.
class Preferences
{
public:
    /// Keeps the settings in `fileName`, or in the user's own place when it is empty; its owner alone can read them.
    explicit Preferences(const QString &fileName = {});

    /// A registered default applies only where the user has set nothing, and is never written.
    void registerDefaults(const QVariantHash &defaults);

    QVariant value(const QString &key) const;
    bool boolValue(const QString &key) const { return value(key).toBool(); }
    /// @return the whole number under `key`, brought into the range that makes sense for its user.
    int intValue(const QString &key, int lowest, int highest) const;
    void setValue(const QString &key, const QVariant &value);

private:
    bool m_isFilePrivate = false;
    QSettings m_settings;
    QVariantHash m_defaults;
};
