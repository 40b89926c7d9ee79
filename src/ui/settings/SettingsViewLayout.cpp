#include "SettingsView.h"

#include "DvarSettingOutlineView.h"
#include "EmptyHint.h"
#include "KelGametype.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "SettingsOutlineModel.h"

#include <QDataStream>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIODevice>
#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

SettingsView::SettingsView(Mode mode, KelServer &server, ActionQueue &actions, KelSettings &settings,
                           KelGametype &gametypes, QWidget *parent)
    : QWidget(parent), settingsGroupList(new QListWidget(this)), settingsFilterField(new QLineEdit(this)),
      m_server(server), m_actions(actions), m_settings(settings), m_gametypes(gametypes),
      m_settingsOutline(new SettingsOutlineModel(server, this))
{
    settingsOutlineView = new DvarSettingOutlineView(*m_settingsOutline, this);
    if (mode == Mode::Unranked) {
        gametypeList = new QListWidget(this);
        m_gametypeOutline = new SettingsOutlineModel(server, this);
        gametypeOutlineView = new DvarSettingOutlineView(*m_gametypeOutline, this);
    }
    layOut(mode);
    connectSettings();
    listGroups();
    showGroup();
    if (mode == Mode::Ranked)
        return;
    connectGametypes();
    listGametypes();
    showGametype();
    gametypeOutlineView->expandEveryRow();
}

void SettingsView::layOut(Mode mode)
{
    settingsGroupList->setObjectName(QStringLiteral("settingsGroupList"));
    settingsGroupList->setAccessibleName(tr("Settings group"));
    settingsFilterField->setObjectName(QStringLiteral("settingsFilterField"));
    settingsFilterField->setAccessibleName(tr("Filter settings"));
    settingsFilterField->setPlaceholderText(tr("Filter settings"));
    // Its icon is looked for in every icon theme; until there is text it is not shown anyway.
    connect(settingsFilterField, &QLineEdit::textChanged, settingsFilterField,
            [field = settingsFilterField] { field->setClearButtonEnabled(true); });
    settingsFilterField->setMinimumWidth(220);
    settingsOutlineView->setObjectName(mode == Mode::Ranked ? QStringLiteral("rankedOutlineView")
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
    if (mode == Mode::Ranked)
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

QByteArray SettingsView::saveLayout() const
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
    return layout;
}

void SettingsView::restoreLayout(const QByteArray &layout)
{
    const QList<QSplitter *> all = splitters();
    const QList<DvarSettingOutlineView *> views = outlineViews();
    QDataStream stream(layout);
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
