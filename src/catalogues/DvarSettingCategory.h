#pragma once

#include <QList>
#include <QString>

#include <memory>

class DvarSetting;

/// The settings of a list that belong together. Main thread only.
class DvarSettingCategory
{
public:
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /// In the order of their names, capitals before small letters.
    QList<std::shared_ptr<DvarSetting>> children() const { return m_children; }
    void setChildren(QList<std::shared_ptr<DvarSetting>> children);

    bool isLeaf() const { return false; }
    QString dvarValue() const { return {}; }
    QString settingDescription() const { return QStringLiteral(""); }

private:
    QString m_name;
    QList<std::shared_ptr<DvarSetting>> m_children;
};
