#pragma once

#include <QCoreApplication>
#include <QString>

#include <memory>

namespace pugi
{
class xml_node;
}

class KelServer;

/// One editable server variable as a catalogue describes it. It holds no value: the value is always the session's, and
/// who edits it has the session write it. Texts are null when the catalogue leaves them out. Main thread only.
class DvarSetting
{
    Q_DECLARE_TR_FUNCTIONS(DvarSetting)
public:
    /// The session outlives the setting.
    explicit DvarSetting(const KelServer &server) : m_server(server) {}

    static std::shared_ptr<DvarSetting> dvarSettingWithXMLNode(const pugi::xml_node &node, const KelServer &server);

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    /// The name of the server variable.
    QString dvar() const { return m_dvar; }
    void setDvar(const QString &dvar) { m_dvar = dvar; }
    /// "string", "bool", "int" or "float"; with any other type no value is valid.
    QString type() const { return m_type; }
    void setType(const QString &type) { m_type = type; }
    QString settingDescription() const { return m_settingDescription; }
    QString category() const { return m_category; }

    bool isLeaf() const { return true; }
    QString description() const;

    /// Null when the session does not know the variable, empty when its value is.
    QString dvarValue() const;
    /// Whether the value is a number other than zero.
    bool dvarBoolValue() const;

    /// Whether the type allows a value that a user has typed. The quotes around it do not count, as a write leaves them
    /// out.
    bool validateValue(const QString &typed) const;
    /// What the type allows, as a short hint for users.
    QString acceptedValues() const;

private:
    const KelServer &m_server;
    QString m_name;
    QString m_dvar;
    QString m_type;
    QString m_settingDescription;
    QString m_category;
};
