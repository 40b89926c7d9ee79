#include "KelGametype.h"

#include "DvarSettingList.h"

#include <utility>

KelGametype::KelGametype(const CatalogueContext &context, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_context(context), m_reader(std::move(reader)), m_formerNames(m_reader.folders().resources)
{
}

KelGametype *KelGametype::sharedKelGametype()
{
    return SharedInstance<KelGametype>::latest();
}

QCoro::Task<CatalogueState> KelGametype::loadGametypeList()
{
    const WorkingCopy::Kind kind = WorkingCopy::gametypes();
    const WorkingCopy::Result opened = co_await m_reader.open(kind);
    if (opened.document)
        takeDocument(*opened.document);
    co_return opened.state;
}

void KelGametype::takeDocument(const XmlDocument &document)
{
    const QString version = document.lastText("//version");
    if (!version.isNull())
        m_version = version;
    QList<std::shared_ptr<DvarSettingList>> gametypes;
    for (const pugi::xml_node &element : document.elements("//Gametype"))
        gametypes.append(DvarSettingList::dvarSettingsWithXMLNode(element, m_context));
    m_gametypes = std::move(gametypes);
    emit gametypeListChanged();
    setSelectedSettingList(m_gametypes.isEmpty() ? nullptr : m_gametypes.constFirst());
}

QHash<QString, std::shared_ptr<DvarSettingList>> KelGametype::gametypeList() const
{
    QHash<QString, std::shared_ptr<DvarSettingList>> list;
    for (const std::shared_ptr<DvarSettingList> &gametype : m_gametypes)
        list.insert(gametype->name(), gametype);
    return list;
}

QList<std::shared_ptr<DvarSettingList>> KelGametype::listedGametypes() const
{
    const QHash<QString, std::shared_ptr<DvarSettingList>> list = gametypeList();
    QList<std::shared_ptr<DvarSettingList>> listed;
    for (const std::shared_ptr<DvarSettingList> &gametype : m_gametypes) {
        if (list.value(gametype->name()) == gametype)
            listed.append(gametype);
    }
    return listed;
}

QString KelGametype::findGametypeByDvar(const QString &dvarName) const
{
    for (const std::shared_ptr<DvarSettingList> &gametype : listedGametypes()) {
        if (!gametype->dvarName().isNull() && gametype->dvarName() == dvarName)
            return gametype->name();
    }
    return dvarName;
}

std::shared_ptr<DvarSettingList> KelGametype::findGametypeByName(const QString &name) const
{
    const QHash<QString, std::shared_ptr<DvarSettingList>> list = gametypeList();
    return list.value(name, list.value(m_formerNames.present(name)));
}

void KelGametype::setSelectedSettingList(const std::shared_ptr<DvarSettingList> &list)
{
    setSelectedSettings(list);
    emit selectedSettingListChanged();
}

QList<std::shared_ptr<DvarSettingCategory>> KelGametype::selectedSettings() const
{
    const std::shared_ptr<DvarSettingList> selected = selectedSettingList();
    return selected ? selected->children() : QList<std::shared_ptr<DvarSettingCategory>>();
}

void KelGametype::setSelectedSettings(const std::shared_ptr<DvarSettingList> &list)
{
    m_selectedSettingList = list;
    emit selectedSettingsChanged();
}
