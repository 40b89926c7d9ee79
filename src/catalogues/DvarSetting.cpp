#include "DvarSetting.h"

#include "KelServer.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "XmlDocument.h"

#include <QRegularExpression>

#include <algorithm>

std::shared_ptr<DvarSetting> DvarSetting::dvarSettingWithXMLNode(const pugi::xml_node &node, const KelServer &server)
{
    auto setting = std::make_shared<DvarSetting>(server);
    setting->m_name = xmlChildText(node, "name");
    setting->m_dvar = xmlChildText(node, "dvar");
    setting->m_type = xmlChildText(node, "type");
    setting->m_settingDescription = xmlChildText(node, "description");
    setting->m_category = xmlChildText(node, "category");
    if (setting->m_type.isNull())
        setting->m_type = QStringLiteral("string");
    return setting;
}

QString DvarSetting::description() const
{
    return QStringLiteral("%1 (%2)(%3)(%4): %5").arg(m_name, m_dvar, m_type, m_category, m_settingDescription);
}

QString DvarSetting::dvarValue() const
{
    const QHash<QString, QString> dvars = m_server.dvarList();
    const auto found = dvars.constFind(m_dvar);
    if (found == dvars.constEnd())
        return {};
    return found->isNull() ? QStringLiteral("") : *found;
}

bool DvarSetting::dvarBoolValue() const
{
    const QString value = dvarValue();
    // A fraction below one is not zero either, so the digits decide.
    return parseNumber(value).has_value() &&
           std::any_of(value.begin(), value.end(), [](QChar c) { return c.digitValue() > 0; });
}

bool DvarSetting::validateValue(const QString &typed) const
{
    const QString value = withoutOuterQuotes(typed);
    static const QRegularExpression wholeNumber(QStringLiteral("\\A[0-9]+\\z"));
    static const QRegularExpression decimalNumber(QStringLiteral("\\A[-+]?[0-9]*\\.?[0-9]+\\z"));
    if (m_type == QLatin1String("string"))
        return true;
    if (m_type == QLatin1String("int"))
        return wholeNumber.match(value).hasMatch();
    if (m_type == QLatin1String("float"))
        return decimalNumber.match(value).hasMatch();
    if (m_type != QLatin1String("bool"))
        return false;
    const std::optional<qint64> number = parseNumber(value);
    return number && (*number == 0 || *number == 1);
}

QString DvarSetting::acceptedValues() const
{
    if (m_type == QLatin1String("string"))
        return tr("Any text");
    if (m_type == QLatin1String("int"))
        return tr("A whole number without a sign, such as 25");
    if (m_type == QLatin1String("float"))
        return tr("A number, such as 10, -2 or 0.5");
    if (m_type == QLatin1String("bool"))
        return tr("0 for off or 1 for on");
    return tr("No value: the catalogue gives this setting no known type");
}
