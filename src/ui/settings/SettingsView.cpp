#include "SettingsView.h"

#include "Alerts.h"
#include "DvarFetcher.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"
#include "DvarSettingOutlineView.h"
#include "EmptyHint.h"
#include "FilterField.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Preferences.h"
#include "SettingsOutlineModel.h"

#include <QDataStream>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIODevice>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QSplitter>
#include <QVBoxLayout>

#include <utility>

namespace
{

using Categories = QList<std::shared_ptr<DvarSettingCategory>>;

/// Marks a variable as being written for as long as the action lives, however it ends.
class PendingWrite
{
public:
    PendingWrite(SettingsOutlineModel &outline, QString dvar) : m_outline(outline), m_dvar(std::move(dvar))
    {
        m_outline.beginWrite(m_dvar);
    }
    ~PendingWrite() { m_outline.endWrite(m_dvar); }
    PendingWrite(const PendingWrite &) = delete;
    PendingWrite &operator=(const PendingWrite &) = delete;

private:
    SettingsOutlineModel &m_outline;
    QString m_dvar;
};

} // namespace

SettingsView::SettingsView(Mode mode, KelServer &server, ActionQueue &actions, DvarFetcher &fetcher,
                           KelSettings &settings, KelGametype &gametypes, QWidget *parent)
    : TabPage(parent), m_mode(mode), settingsGroupList(new QListWidget(this)),
      settingsFilterField(new FilterField(tr("Filter settings"), this)), m_server(server), m_actions(actions),
      m_fetcher(fetcher), m_settings(settings), m_gametypes(gametypes),
      m_settingsOutline(new SettingsOutlineModel(server, fetcher, this))
{
    settingsOutlineView = new DvarSettingOutlineView(*m_settingsOutline, this);
    if (m_mode == Mode::Unranked) {
        gametypeList = new QListWidget(this);
        m_gametypeOutline = new SettingsOutlineModel(server, fetcher, this);
        gametypeOutlineView = new DvarSettingOutlineView(*m_gametypeOutline, this);
    }
    layOut();
    connectSettings();
    listGroups();
    showGroup();
    if (m_mode == Mode::Ranked)
        return;
    connectGametypes();
    listGametypes();
    showGametype();
    gametypeOutlineView->expandEveryRow();
}

SettingsView::~SettingsView() = default;

void SettingsView::layOut()
{
    settingsGroupList->setObjectName(QStringLiteral("settingsGroupList"));
    settingsGroupList->setAccessibleName(tr("Settings group"));
    settingsFilterField->setObjectName(QStringLiteral("settingsFilterField"));
    settingsFilterField->setMinimumWidth(220);
    settingsOutlineView->setObjectName(m_mode == Mode::Ranked ? QStringLiteral("rankedOutlineView")
                                                              : QStringLiteral("unrankedOutlineView"));
    settingsOutlineView->setAccessibleName(tr("Game settings"));

    auto *halves = new QSplitter(Qt::Vertical, this);
    halves->setObjectName(QStringLiteral("settingsHalves"));
    halves->setChildrenCollapsible(false);
    halves->addWidget(pairOf(tr("Settings group"), settingsGroupList, settingsOutlineView));
    m_groupsHint = new EmptyHint(settingsGroupList);
    m_settingsHint = new EmptyHint(settingsOutlineView);
    auto *above = new QHBoxLayout;
    above->addStretch();
    above->addWidget(settingsFilterField);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(above);
    layout->addWidget(halves, 1);
    setTabOrder(settingsGroupList, settingsFilterField);
    setTabOrder(settingsFilterField, settingsOutlineView);
    setFocusProxy(settingsGroupList);
    if (m_mode == Mode::Ranked)
        return;
    halves->addWidget(pairOf(tr("Gametype"), gametypeList, gametypeOutlineView));
    layOutGametypes();
}

void SettingsView::layOutGametypes()
{
    gametypeList->setObjectName(QStringLiteral("gametypeList"));
    gametypeList->setAccessibleName(tr("Gametype"));
    gametypeOutlineView->setObjectName(QStringLiteral("gametypeOutlineView"));
    gametypeOutlineView->setAccessibleName(tr("Gametype settings"));
    m_gametypesHint = new EmptyHint(gametypeList);
    m_gametypeSettingsHint = new EmptyHint(gametypeOutlineView);
    setTabOrder(settingsOutlineView, gametypeList);
    setTabOrder(gametypeList, gametypeOutlineView);
}

QSplitter *SettingsView::pairOf(const QString &title, QListWidget *list, DvarSettingOutlineView *outline)
{
    auto *pair = new QSplitter(Qt::Horizontal, this);
    pair->setChildrenCollapsible(false);
    auto *left = new QWidget(pair);
    auto *caption = new QLabel(title, left);
    // In line with the outline's header beside it.
    caption->setMinimumHeight(outline->header()->sizeHint().height());
    caption->setBuddy(list);
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(caption);
    column->addWidget(list, 1);
    list->setMinimumWidth(110);
    list->setUniformItemSizes(true);
    list->setTextElideMode(Qt::ElideRight);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    pair->addWidget(left);
    pair->addWidget(outline);
    pair->setStretchFactor(1, 1);
    pair->setSizes({140, 590});
    return pair;
}

void SettingsView::connectOutline(SettingsOutlineModel *outline, DvarSettingOutlineView *view)
{
    connect(view, &DvarSettingOutlineView::askAgainRequested, this, &SettingsView::askAgain);
    connect(outline, &SettingsOutlineModel::writeRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting, const QString &value) {
                m_actions.start(writeSetting(outline, setting, value));
            });
    connect(outline, &SettingsOutlineModel::toggleRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting) {
                m_actions.start(toggleSetting(outline, setting));
            });
}

void SettingsView::connectSettings()
{
    connectOutline(m_settingsOutline, settingsOutlineView);
    connect(&m_fetcher, &DvarFetcher::began, this, &SettingsView::preferEverythingShown);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::listGroups);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::showGroup);
    connect(&m_settings, &KelSettings::sortedSettingsValuesChanged, this, &SettingsView::listGroups);
    connect(&m_settings, &KelSettings::selectedSettingsChanged, this, &SettingsView::showGroup);
    connect(settingsGroupList, &QListWidget::currentTextChanged, this,
            [this](const QString &name) { m_settings.setSelectedSettingList(name); });
    connect(settingsFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        for (DvarSettingOutlineView *view : outlineViews())
            view->setFilterText(text);
        updateHints();
    });
}

void SettingsView::connectGametypes()
{
    connectOutline(m_gametypeOutline, gametypeOutlineView);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::listGametypes);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::showGametype);
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &SettingsView::listGametypes);
    connect(&m_gametypes, &KelGametype::selectedSettingsChanged, this, &SettingsView::showGametype);
    connect(&m_gametypes, &KelGametype::selectedSettingListChanged, gametypeOutlineView,
            &DvarSettingOutlineView::expandEveryRow);
    connect(gametypeList, &QListWidget::currentRowChanged, this,
            [this](int row) { m_gametypes.setSelectedSettingList(m_gametypes.arrangedGametypes().value(row)); });
}

void SettingsView::listGroups()
{
    // What is selected is the catalogue's business, and it tells when it has decided.
    const QSignalBlocker quiet(settingsGroupList);
    settingsGroupList->clear();
    if (m_server.isConnected()) // the values of a server that has gone would look as if they were true
        settingsGroupList->addItems(m_settings.arrangedGroups());
}

void SettingsView::listGametypes()
{
    const QSignalBlocker quiet(gametypeList);
    gametypeList->clear();
    if (!m_server.isConnected())
        return;
    for (const std::shared_ptr<DvarSettingList> &gametype : m_gametypes.arrangedGametypes())
        gametypeList->addItem(gametype->name());
}

void SettingsView::showGroup()
{
    const QSignalBlocker quiet(settingsGroupList);
    settingsGroupList->setCurrentRow(
        static_cast<int>(m_settings.arrangedGroups().indexOf(m_settings.selectedSettingList())));
    m_settingsOutline->setCategories(m_server.isConnected() ? m_settings.selectedSettings() : Categories());
    settingsOutlineView->expandEveryRow();
    updateHints();
    preferShown(m_settings.selectedSettings());
}

void SettingsView::showGametype()
{
    const QSignalBlocker quiet(gametypeList);
    gametypeList->setCurrentRow(
        static_cast<int>(m_gametypes.arrangedGametypes().indexOf(m_gametypes.selectedSettingList())));
    m_gametypeOutline->setCategories(m_server.isConnected() ? m_gametypes.selectedSettings() : Categories());
    updateHints();
    preferShown(m_gametypes.selectedSettings());
}

void SettingsView::setInFront(bool isInFront)
{
    m_isInFront = isInFront;
    preferEverythingShown();
}

void SettingsView::preferEverythingShown()
{
    Categories shown = m_settings.selectedSettings();
    if (m_mode == Mode::Unranked)
        shown += m_gametypes.selectedSettings();
    preferShown(shown);
}

void SettingsView::preferShown(const Categories &categories)
{
    if (!m_isInFront)
        return;
    QStringList names;
    for (const std::shared_ptr<DvarSettingCategory> &category : categories) {
        for (const std::shared_ptr<DvarSetting> &setting : category->children())
            names.append(setting->dvar());
    }
    m_fetcher.prefer(names);
}

void SettingsView::askAgain(const QString &dvar)
{
    m_fetcher.askAgain();
    m_fetcher.askFor({dvar}); // also one that a reload of the catalogue has brought since the connect
    preferEverythingShown();
}

QString SettingsView::outlineHint(const SettingsOutlineModel &outline, const QString &emptyText) const
{
    if (outline.hasSettings())
        return tr("No setting here matches the filter.");
    return m_server.isConnected() ? emptyText : tr("Not connected. Connect to a server to see its settings.");
}

void SettingsView::updateHints()
{
    m_groupsHint->setText(m_server.isConnected() ? tr("The catalogue has no groups.") : tr("Not connected."));
    m_settingsHint->setText(outlineHint(*m_settingsOutline, tr("Choose a group that has settings.")));
    if (m_gametypeOutline == nullptr)
        return;
    m_gametypesHint->setText(m_server.isConnected() ? tr("The catalogue has no gametypes.") : tr("Not connected."));
    m_gametypeSettingsHint->setText(outlineHint(*m_gametypeOutline, tr("Choose a gametype that has settings.")));
}

QCoro::Task<> SettingsView::writeSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting,
                                         QString value)
{
    const PendingWrite mark(*outline, setting->dvar());
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    // Also when the session holds the same: somebody else may have changed it at the server meanwhile.
    co_await setDvarValue(setting->dvar(), value);
}

QCoro::Task<> SettingsView::toggleSetting(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting)
{
    const PendingWrite mark(*outline, setting->dvar());
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const QString opposite = setting->dvarBoolValue() ? QStringLiteral("0") : QStringLiteral("1");
    co_await setDvarValue(setting->dvar(), opposite);
}

QCoro::Task<> SettingsView::setDvarValue(QString dvar, QString value)
{
    const Reply reply = co_await m_server.setDvar(dvar, value);
    if (reply.isCancelled)
        co_return;
    if (!reply.isSuccess()) {
        const QString text = tr("Error setting dvar '%1': %2").arg(dvar, reply.text);
        co_await m_server.alerts().run(tr("Remote Command Failure"), text);
    } else if (reply.text.contains(QLatin1String("not a valid value"))) {
        co_await m_server.alerts().run(tr("Remote Command Failure"), reply.text);
        if (m_server.isConnected())
            co_await m_server.updateDvarFromServer(dvar);
    }
}

QList<QSplitter *> SettingsView::splitters() const
{
    return findChildren<QSplitter *>();
}

QList<DvarSettingOutlineView *> SettingsView::outlineViews() const
{
    if (gametypeOutlineView == nullptr)
        return {settingsOutlineView};
    return {settingsOutlineView, gametypeOutlineView};
}

QString SettingsView::layoutKey() const
{
    return m_mode == Mode::Ranked ? QStringLiteral("window/rankedSettings") : QStringLiteral("window/unrankedSettings");
}

void SettingsView::saveLayout(Preferences &preferences) const
{
    QList<QByteArray> states;
    for (const QSplitter *splitter : splitters())
        states.append(splitter->saveState());
    for (const DvarSettingOutlineView *view : outlineViews())
        states.append(view->header()->saveState());
    QByteArray layout;
    QDataStream stream(&layout, QIODevice::WriteOnly);
    for (const QByteArray &state : states)
        stream << state;
    preferences.setValue(layoutKey(), layout);
}

void SettingsView::restoreLayout(const Preferences &preferences)
{
    const QList<QSplitter *> all = splitters();
    const QList<DvarSettingOutlineView *> views = outlineViews();
    QDataStream stream(preferences.value(layoutKey()).toByteArray());
    QList<QByteArray> states;
    // One by one: a list would be made as long as damaged bytes say.
    for (qsizetype each = 0; each < all.size() + views.size(); ++each) {
        QByteArray state;
        stream >> state;
        states.append(state);
    }
    if (stream.status() != QDataStream::Ok || !stream.atEnd())
        return;
    for (qsizetype each = 0; each < all.size(); ++each)
        all.at(each)->restoreState(states.at(each));
    for (qsizetype each = 0; each < views.size(); ++each)
        views.at(each)->header()->restoreState(states.at(all.size() + each));
}
