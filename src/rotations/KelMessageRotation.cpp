#include "KelMessageRotation.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KelServer.h"
#include "Number.h"
#include "PreciseOneShotTimer.h"
#include "Preferences.h"

#include <algorithm>
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

static QString sayCommand(const QString &text)
{
    return QStringLiteral("say \"%1\"").arg(text);
}

KelMessageRotation::KelMessageRotation(Surroundings surroundings, const QString &folder,
                                       std::unique_ptr<OneShotTimer> timer, QObject *parent)
    : RotationStoreOf(messageRotationKind(), surroundings.preferences, surroundings.alerts, folder, std::nullopt,
                      parent),
      m_preferences(surroundings.preferences), m_alerts(surroundings.alerts), m_server(surroundings.server),
      m_actions(surroundings.actions),
      m_timer(timer != nullptr ? std::move(timer) : std::make_unique<PreciseOneShotTimer>())
{
    connect(tableModel(), &QAbstractItemModel::rowsInserted, this, &KelMessageRotation::updateTransportButtons);
    connect(tableModel(), &QAbstractItemModel::rowsRemoved, this, &KelMessageRotation::updateTransportButtons);
    connect(&m_server, &KelServer::isConnectedChanged, this, &KelMessageRotation::connectionDidChange);
}

QCoro::Task<> KelMessageRotation::addMessageToCurrentRotation(QString message, QString duration)
{
    const QList<MessageRotationInst> added(1, MessageRotationInst{message, duration});
    co_await addEntries(added);
}

void KelMessageRotation::setCurrentMessageIndex(int index)
{
    const int stored = std::clamp(index, 0, std::max(0, rowCount() - 1));
    if (std::exchange(m_messageIndex, stored) != stored)
        emit currentMessageIndexChanged(stored);
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
    return m_playState != Playing && rowCount() > 0 && m_server.isConnected();
}

void KelMessageRotation::startRotation()
{
    m_timer->stop();
    m_isSending = false;
    ++m_showing;
    if (rowCount() == 0)
        return;
    setPlayState(Playing);
    setCurrentMessageIndex(0);
    updateTransportButtons();
    displayCurrentMessage();
}

void KelMessageRotation::stopRotation()
{
    m_timer->stop();
    m_isSending = false;
    ++m_showing;
    setPlayState(Stopped);
    setEntryOnAir(nullptr);
    updateTransportButtons();
}

void KelMessageRotation::advanceRotation()
{
    m_timer->stop();
    if (m_playState != Playing)
        return;
    const int next = m_messageIndex + 1;
    setCurrentMessageIndex(next);
    if (m_messageIndex == next)
        displayCurrentMessage();
    else if (m_preferences.boolValue(QStringLiteral("checkBoxLoopMessages")))
        startRotation();
    else
        stopRotation();
}

void KelMessageRotation::displayCurrentMessage()
{
    setCurrentMessageIndex(m_messageIndex);
    const QList<std::shared_ptr<MessageRotationInst>> rows = entries();
    if (rows.isEmpty())
        return;
    const std::shared_ptr<MessageRotationInst> &row = rows.at(m_messageIndex);
    QString text = row->message;
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    m_isSending = true;
    setEntryOnAir(row);
    m_actions.start(showMessage(row, sayCommand(text), ++m_showing));
}

QCoro::Task<> KelMessageRotation::showMessage(std::shared_ptr<const MessageRotationInst> entry, QString line,
                                              quint64 showing)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    qint64 shortestWait = 0;
    const Link::Kind link = m_server.link().kind();
    if (turn && showing == m_showing && (link == Link::Kind::Silent || link == Link::Kind::Refused)) {
        m_server.appendConsoleNote(tr("skipped, as the server does not answer: %1").arg(line));
        shortestWait = 1;
    } else if (turn && showing == m_showing) {
        const Reply reply = co_await m_server.sendCommand(line);
        if (turn && !reply.isCancelled && !reply.isSuccess()) {
            co_await tellOfFailure(reply.text);
            shortestWait = 1; // or one alert would follow the other, with no moment to press Stop
        }
    }
    // A turn that was refused because another connection began only costs this one message.
    if (showing == m_showing && !m_actions.isClosed()) {
        m_isSending = false;
        waitFor(entry->duration, shortestWait);
        emit entryOnAirChanged();
    }
}

void KelMessageRotation::waitFor(const QString &duration, qint64 shortest)
{
    // Without a number the message stays until Stop: that is how a rotation is held.
    if (const std::optional<qint64> seconds = parseNumber(duration))
        m_timer->start(std::max(*seconds, shortest), [this] { advanceRotation(); });
}

QCoro::Task<> KelMessageRotation::tellOfFailure(QString error)
{
    const QString text = tr("'Say' returned an error: %1").arg(error);
    co_await m_alerts.run(tr("Remote Command Failure"), text);
}

void KelMessageRotation::setPlayState(PlayState state)
{
    if (std::exchange(m_playState, state) != state)
        emit playStateChanged(state);
}

void KelMessageRotation::setEntryOnAir(std::shared_ptr<const MessageRotationInst> entry)
{
    if (m_entryOnAir == entry)
        return;
    m_entryOnAir = std::move(entry);
    emit entryOnAirChanged();
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
    const ActionQueue::Turn turn = co_await m_actions.turn();
    bool wasSent = false;
    if (turn) {
        const QString line = sayCommand(text);
        const Reply reply = co_await m_server.sendCommand(line);
        wasSent = !reply.isRefused;
        if (turn && !reply.isCancelled && !reply.isSuccess())
            co_await tellOfFailure(reply.text);
    }
    if (!wasSent && m_quickMessageText.isEmpty()) // what was typed in the meantime is the next message
        setQuickMessageText(text);
    --m_quickMessagesOnTheirWay;
}
