#pragma once

#include <QList>
#include <QString>

#include <memory>

class DvarSetting;

/// The settings of a list that belong together. Main thread only.
class DvarSettingCategory
{
public:
    /// @param children  in the order of their names, capitals before small letters.
    DvarSettingCategory(QString name, QList<std::shared_ptr<DvarSetting>> children)
        : m_name(std::move(name)), m_children(std::move(children))
    {
    }

    QString name() const { return m_name; }
    QList<std::shared_ptr<DvarSetting>> children() const { return m_children; }
    bool isLeaf() const { return false; }

private:
    QString m_name;
    QList<std::shared_ptr<DvarSetting>> m_children;
};
