#include "SettingsView.h"

#include "Alerts.h"
#include "DvarFetcher.h"
#include "DvarReplies.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"
#include "DvarSettingOutlineView.h"
#include "FilterField.h"
#include "Hint.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Named.h"
#include "Secrets.h"
#include "ServerAction.h"
#include "SettingsOutlineModel.h"
#include "TitleLabel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QSplitter>
#include <QVBoxLayout>

#include <utility>

namespace
{

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
    : TabPage(parent), m_server(server), m_actions(actions), m_fetcher(fetcher), m_settings(settings),
      m_gametypes(gametypes), m_settingsPane(makeSettingsPane(mode)),
      settingsFilterField(named("settingsFilterField", new FilterField(tr("Filter settings"), this)))
{
    auto *above = new QHBoxLayout;
    above->addStretch();
    above->addWidget(settingsFilterField);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(above);
    setTabOrder(m_settingsPane.list, settingsFilterField);
    setFocusProxy(m_settingsPane.list);
    connectSettings();
    if (mode == Mode::Ranked) {
        layout->addWidget(m_settingsPane.pair, 1);
    } else {
        m_gametypePane =
            makePane({tr("Gametype"), "gametypeList", tr("Gametype settings"), "gametypeOutlineView", "gametypePair"});
        auto *halves = named("settingsHalves", new QSplitter(Qt::Vertical, this));
        halves->setChildrenCollapsible(false);
        halves->addWidget(m_settingsPane.pair);
        halves->addWidget(m_gametypePane->pair);
        layout->addWidget(halves, 1);
        connectGametypes();
    }
    followConnection();
    if (m_gametypePane)
        m_gametypePane->outlineView->expandEveryRow();
}

SettingsView::~SettingsView() = default;

SettingsView::Pane SettingsView::makeSettingsPane(Mode mode)
{
    const QString title = tr("Settings group");
    const QString settings = tr("Game settings");
    if (mode == Mode::Ranked)
        return makePane({title, "settingsGroupList", settings, "rankedOutlineView", "rankedSettingsPair"});
    return makePane({title, "settingsGroupList", settings, "unrankedOutlineView", "unrankedSettingsPair"});
}

SettingsView::Pane SettingsView::makePane(const PaneNames &names)
{
    auto *pair = named(names.pair, new QSplitter(Qt::Horizontal, this));
    pair->setChildrenCollapsible(false);
    auto *left = new QWidget(pair);
    auto *list = named(names.list, new QListWidget(left), names.listTitle);
    list->setMinimumWidth(110);
    list->setUniformItemSizes(true);
    list->setTextElideMode(Qt::ElideRight);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *outline = new SettingsOutlineModel(m_server, m_fetcher, this);
    auto *view = named(names.outline, new DvarSettingOutlineView(*outline, pair), names.outlineTitle);
    QLabel *caption = titleOf(names.listTitle, list);
    caption->setMinimumHeight(view->header()->sizeHint().height()); // in line with the header beside it
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(caption);
    column->addWidget(list, 1);
    pair->addWidget(left);
    pair->addWidget(view);
    pair->setStretchFactor(1, 1);
    pair->setSizes({140, 590});
    connect(view, &DvarSettingOutlineView::askAgainRequested, this, &SettingsView::askAgain);
    connectOutline(outline);
    return {pair, list, new Hint(list), outline, view, new Hint(view)};
}

void SettingsView::connectOutline(SettingsOutlineModel *outline)
{
    connect(outline, &SettingsOutlineModel::writeRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting, const QString &value) {
                m_actions.start(write(outline, setting, value));
            });
    connect(outline, &SettingsOutlineModel::toggleRequested, this,
            [this, outline](const std::shared_ptr<DvarSetting> &setting) {
                m_actions.start(write(outline, setting, std::nullopt));
            });
}

void SettingsView::connectSettings()
{
    connect(&m_fetcher, &DvarFetcher::began, this, &SettingsView::preferEverythingShown);
    connect(&m_server, &KelServer::isConnectedChanged, this, &SettingsView::followConnection);
    connect(&m_settings, &KelSettings::sortedSettingsValuesChanged, this, &SettingsView::listGroups);
    connect(&m_settings, &KelSettings::selectedSettingsChanged, this, &SettingsView::showGroup);
    connect(m_settingsPane.list, &QListWidget::currentTextChanged, this,
            [this](const QString &name) { m_settings.setSelectedSettingList(name); });
    connect(settingsFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_settingsPane.outlineView->setFilterText(text);
        if (m_gametypePane)
            m_gametypePane->outlineView->setFilterText(text);
        updateHints();
    });
}

void SettingsView::connectGametypes()
{
    connect(&m_gametypes, &KelGametype::gametypeListChanged, this, &SettingsView::listGametypes);
    connect(&m_gametypes, &KelGametype::selectedSettingsChanged, this, &SettingsView::showGametype);
    connect(&m_gametypes, &KelGametype::selectedSettingListChanged, m_gametypePane->outlineView,
            &DvarSettingOutlineView::expandEveryRow);
    connect(m_gametypePane->list, &QListWidget::currentRowChanged, this,
            [this](int row) { m_gametypes.setSelectedSettingList(m_gametypes.arrangedGametypes().value(row)); });
}

void SettingsView::followConnection()
{
    listGroups();
    showGroup();
    if (!m_gametypePane)
        return;
    listGametypes();
    showGametype();
}

void SettingsView::listGroups()
{
    // The catalogue decides what is selected, and tells when it has.
    const QSignalBlocker quiet(m_settingsPane.list);
    m_settingsPane.list->clear();
    if (m_server.isConnected()) // the values of a server that has gone would look as if they were true
        m_settingsPane.list->addItems(m_settings.arrangedGroups());
}

void SettingsView::listGametypes()
{
    const QSignalBlocker quiet(m_gametypePane->list);
    m_gametypePane->list->clear();
    if (!m_server.isConnected())
        return;
    for (const std::shared_ptr<DvarSettingList> &gametype : m_gametypes.arrangedGametypes())
        m_gametypePane->list->addItem(gametype->name());
}

void SettingsView::showGroup()
{
    const qsizetype row = m_settings.arrangedGroups().indexOf(m_settings.selectedSettingList());
    fill(m_settingsPane, static_cast<int>(row), m_settings.selectedSettings());
    m_settingsPane.outlineView->expandEveryRow();
}

void SettingsView::showGametype()
{
    const qsizetype row = m_gametypes.arrangedGametypes().indexOf(m_gametypes.selectedSettingList());
    fill(*m_gametypePane, static_cast<int>(row), m_gametypes.selectedSettings());
}

void SettingsView::fill(const Pane &pane, int row, const Categories &settings)
{
    const QSignalBlocker quiet(pane.list);
    pane.list->setCurrentRow(row);
    pane.outline->setCategories(m_server.isConnected() ? settings : Categories());
    updateHints();
    preferShown(settings);
}

void SettingsView::setInFront(bool isInFront)
{
    m_isInFront = isInFront;
    preferEverythingShown();
}

void SettingsView::preferEverythingShown()
{
    Categories shown = m_settings.selectedSettings();
    if (m_gametypePane)
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
}

QString SettingsView::outlineHint(const SettingsOutlineModel &outline, const QString &emptyText) const
{
    if (outline.hasSettings())
        return tr("No setting here matches the filter.");
    return m_server.isConnected() ? emptyText : tr("Not connected. Connect to a server to see its settings.");
}

void SettingsView::updateHints()
{
    const bool isConnected = m_server.isConnected();
    m_settingsPane.listHint->showText(isConnected ? tr("The catalogue has no groups.") : tr("Not connected."));
    m_settingsPane.outlineHint->showText(outlineHint(*m_settingsPane.outline, tr("Choose a group that has settings.")));
    if (!m_gametypePane)
        return;
    m_gametypePane->listHint->showText(isConnected ? tr("The catalogue has no gametypes.") : tr("Not connected."));
    m_gametypePane->outlineHint->showText(
        outlineHint(*m_gametypePane->outline, tr("Choose a gametype that has settings.")));
}

QCoro::Task<> SettingsView::write(SettingsOutlineModel *outline, std::shared_ptr<DvarSetting> setting,
                                  std::optional<QString> value)
{
    const QString dvar = setting->dvar();
    const QString name = setting->name().isEmpty() ? dvar : setting->name();
    const PendingWrite mark(*outline, dvar);
    ServerAction action(m_server, m_actions, {.kind = Outcome::Kind::Setting, .action = tr("Set"), .targets = {name}});
    const bool goesOn = co_await action.begin();
    if (!goesOn)
        co_return;
    if (!value)
        value = setting->dvarBoolValue() ? QStringLiteral("0") : QStringLiteral("1");
    // The value is written even if the session holds the same one: the server may have been changed by another console.
    const Reply reply = co_await setDvarValue(dvar, *value);
    const bool isSecret = holdsPassword(dvar);
    action.note(reply, isSecret, isSecret ? tr("%1 was set").arg(name) : tr("%1 was set to %2").arg(name, *value));
}

QCoro::Task<Reply> SettingsView::setDvarValue(QString dvar, QString value)
{
    const Reply reply = co_await m_server.setDvar(dvar, value);
    if (reply.isCancelled)
        co_return reply;
    const QString title = tr("Remote Command Failure");
    if (!reply.isSuccess()) {
        const QString text = tr("Error setting dvar '%1': %2").arg(dvar, reply.text);
        co_await m_server.alerts().run(title, text);
    } else if (isValueRefused(reply.text)) {
        co_await m_server.alerts().run(title, reply.text);
        if (m_server.isConnected())
            co_await m_server.updateDvarFromServer(dvar);
    }
    co_return reply;
}
