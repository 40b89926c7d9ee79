#pragma once

#include "CatalogueContext.h"
#include "Exchange.h"

#include <QCoroTask>

#include <QCoreApplication>
#include <QString>

#include <memory>

namespace pugi
{
class xml_node;
}

/// One editable server variable as a catalogue describes it. It holds no value: the value is always the session's.
/// Texts are null when the catalogue leaves them out. Main thread only.
class DvarSetting
{
    Q_DECLARE_TR_FUNCTIONS(DvarSetting)
public:
    explicit DvarSetting(const CatalogueContext &context) : m_context(context) {}

    static std::shared_ptr<DvarSetting> dvarSettingWithXMLNode(const pugi::xml_node &node,
                                                               const CatalogueContext &context);

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    /// The name of the server variable.
    QString dvar() const { return m_dvar; }
    void setDvar(const QString &dvar) { m_dvar = dvar; }
    /// "string", "bool", "int" or "float"; with any other type no value is valid.
    QString type() const { return m_type; }
    void setType(const QString &type) { m_type = type; }
    QString settingDescription() const { return m_settingDescription; }
    void setSettingDescription(const QString &text) { m_settingDescription = text; }
    QString category() const { return m_category; }
    void setCategory(const QString &category) { m_category = category; }

    bool isLeaf() const { return true; }
    QString description() const;

    /// Null when the session does not know the variable, empty when its value is.
    QString dvarValue() const;
    /// Whether the value is a number other than zero.
    bool dvarBoolValue() const;

    /// Writes the variable and tells the user what went wrong; the session announces what changed. A value that the
    /// server turns down is read anew. Takes no turn, and the setting may be gone when it resumes.
    /// @return what the server answered to the write.
    QCoro::Task<Reply> setDvarValue(QString value);
    QCoro::Task<Reply> setDvarBoolValue(bool value);

    /// Whether the type allows a value that a user has typed. The quotes around it do not count, as a write leaves them
    /// out.
    bool validateValue(const QString &typed) const;
    /// What the type allows, as a short hint for users.
    QString acceptedValues() const;

private:
    CatalogueContext m_context;
    QString m_name;
    QString m_dvar;
    QString m_type;
    QString m_settingDescription;
    QString m_category;
};
