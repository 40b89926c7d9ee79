#include "KelMessageRotation.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KelServer.h"
#include "PreciseOneShotTimer.h"
#include "ServerAction.h"

#include <utility>

static RotationKind messageRotationKind()
{
    return {
        .name = QStringLiteral("MessageRotation"),
        .fileName = QStringLiteral("FerrowRcon.exe.msgrotate"),
        .currentRotationKey = QStringLiteral("currentMessageRotationName"),
        .creationRefused = KelMessageRotation::tr("Unable to Create Message Rotation"),
        .alreadyExists = KelMessageRotation::tr("The message rotation named '%1' already exists!"),
        .deletionRefused = KelMessageRotation::tr("Unable to Delete Message Rotation"),
        .doesNotExist = KelMessageRotation::tr("The message rotation named '%1' does not exist!"),
        .saveQuestion = KelMessageRotation::tr("You have made changes in the Message Rotation which have not been "
                                               "saved.\n\nDo you want to save them?"),
        .loadFailed = KelMessageRotation::tr("Message Rotations Not Loaded"),
        .saveFailed = KelMessageRotation::tr("Message Rotations Not Saved"),
        .newTitle = KelMessageRotation::tr("New Message Rotation"),
        .saveAsTitle = KelMessageRotation::tr("Save Message Rotation As"),
        .openTitle = KelMessageRotation::tr("Open Message Rotation"),
        .deleteTitle = KelMessageRotation::tr("Delete Message Rotations"),
        .nameRefused = KelMessageRotation::tr("Unable to Add New Message Rotation"),
        .nameTaken = KelMessageRotation::tr("Message Rotation '%1' already exists!"),
        .tableName = KelMessageRotation::tr("Messages"),
        .tableObjectName = QStringLiteral("messageRotationTableView"),
        .placeholder = KelMessageRotation::tr("No messages yet. Press \"Add Message…\" to add one, or \"Open…\" for "
                                              "a saved rotation."),
    };
}

static std::unique_ptr<OneShotTimer> orPrecise(std::unique_ptr<OneShotTimer> timer)
{
    return timer != nullptr ? std::move(timer) : std::make_unique<PreciseOneShotTimer>();
}

KelMessageRotation::KelMessageRotation(Surroundings surroundings, const QString &folder,
                                       std::unique_ptr<OneShotTimer> timer, QObject *parent)
    : RotationStoreOf(messageRotationKind(), surroundings.preferences, surroundings.alerts, folder, std::nullopt,
                      parent),
      m_server(surroundings.server), m_actions(surroundings.actions),
      m_player(
          surroundings.server, surroundings.actions, surroundings.preferences, [this] { return entries(); },
          orPrecise(std::move(timer)))
{
    connect(&m_player, &MessagePlayer::stateChanged, this, &KelMessageRotation::playStateChanged);
    connect(&m_player, &MessagePlayer::indexChanged, this, &KelMessageRotation::currentMessageIndexChanged);
    connect(&m_player, &MessagePlayer::entryOnAirChanged, this, &KelMessageRotation::entryOnAirChanged);
    connect(&m_player, &MessagePlayer::touched, this, &KelMessageRotation::updateTransportButtons);
    connect(tableModel(), &QAbstractItemModel::rowsInserted, this, &KelMessageRotation::updateTransportButtons);
    connect(tableModel(), &QAbstractItemModel::rowsRemoved, this, &KelMessageRotation::updateTransportButtons);
    connect(&m_server, &KelServer::isConnectedChanged, this, &KelMessageRotation::connectionDidChange);
}

QCoro::Task<> KelMessageRotation::addMessageToCurrentRotation(QString message, QString duration)
{
    const QList<MessageRotationInst> added(1, MessageRotationInst{message, duration});
    co_await addEntries(added);
}

void KelMessageRotation::connectionDidChange(bool isConnected)
{
    if (!isConnected)
        stopRotation();
    else
        updateTransportButtons();
}

bool KelMessageRotation::startEnabled() const
{
    return !stopEnabled() && rowCount() > 0 && m_server.isConnected();
}

void KelMessageRotation::setQuickMessageText(const QString &text)
{
    if (std::exchange(m_quickMessageText, text) != text)
        emit quickMessageTextChanged(text);
}

void KelMessageRotation::sendQuickMessage()
{
    if (m_quickMessageText.isEmpty() && m_quickMessagesOnTheirWay > 0) // Return pressed twice means one message
        return;
    ++m_quickMessagesOnTheirWay;
    const QString text = m_quickMessageText;
    setQuickMessageText({});
    m_actions.start(sendText(text));
}

QCoro::Task<> KelMessageRotation::sendText(QString text)
{
    ServerAction action(m_server, m_actions, {.action = tr("Quick Message"), .text = tr("Sent \"%1\"").arg(text)});
    const bool hasTurn = co_await action.begin();
    bool wasSent = false;
    if (hasTurn) {
        co_await action.send(MessagePlayer::sayCommand(text), MessagePlayer::sayName());
        wasSent = !action.isRefused();
    }
    if (!wasSent && m_quickMessageText.isEmpty()) // what was typed in the meantime is the next message
        setQuickMessageText(text);
    --m_quickMessagesOnTheirWay;
}
