#include "PlayerCountLabel.h"

#include "KelServer.h"
#include "PlayerRoster.h"

#include <QTimer>

using namespace std::chrono_literals;

PlayerCountLabel::PlayerCountLabel(PlayerRoster &roster, const KelServer &server, QWidget *parent)
    : QLabel(parent), m_roster(roster), m_server(server), m_seconds(new QTimer(this))
{
    setObjectName(QStringLiteral("playerCountLabel"));
    setTextFormat(Qt::PlainText);
    connect(m_seconds, &QTimer::timeout, this, &PlayerCountLabel::tell);
    connect(&server, &KelServer::isConnectedChanged, this, &PlayerCountLabel::tell);
    connect(&roster, &PlayerRoster::changed, this, &PlayerCountLabel::tell);
    connect(roster.rows().selection(), &QItemSelectionModel::selectionChanged, this, &PlayerCountLabel::tell);
    tell();
}

QString PlayerCountLabel::selectedText() const
{
    const int hidden = m_roster.rows().hiddenSelectedCount();
    const int seen = static_cast<int>(m_roster.rows().selection()->selectedRows().size());
    if (hidden == 0)
        return tr("%n selected", nullptr, seen);
    return tr("%n selected (%1 hidden by the filter)", nullptr, seen + hidden).arg(hidden);
}

QString PlayerCountLabel::ageText() const
{
    const std::chrono::seconds age = m_roster.age().value_or(0s);
    if (age < 1min)
        return tr("list %1 s old").arg(age.count());
    if (age < 1h)
        return tr("list %1 min old").arg(std::chrono::floor<std::chrono::minutes>(age).count());
    return tr("list %1 h old").arg(std::chrono::floor<std::chrono::hours>(age).count());
}

void PlayerCountLabel::tell()
{
    const bool isTicking = m_server.isConnected() && isVisible();
    if (!isTicking)
        m_seconds->stop();
    else if (!m_seconds->isActive())
        m_seconds->start(1s);
    QStringList parts;
    if (m_server.isConnected()) {
        parts = {tr("%n shown", nullptr, m_roster.rows().arranged()->rowCount()), selectedText()};
        if (m_roster.age())
            parts.append(ageText());
        if (m_roster.mayBeIncomplete())
            parts.append(tr("list may be incomplete"));
    }
    setText(parts.join(QStringLiteral(" · ")));
}

void PlayerCountLabel::showEvent(QShowEvent *event)
{
    QLabel::showEvent(event);
    tell();
}

void PlayerCountLabel::hideEvent(QHideEvent *event)
{
    QLabel::hideEvent(event);
    tell();
}
