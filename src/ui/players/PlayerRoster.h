#pragma once

#include "ArrayController.h"
#include "PlayerList.h"

#include <QCoroTask>

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

class KelServer;

/// A player whom the user has chosen, as he was listed then.
struct ChosenPlayer {
    PlayerRow row;
    bool hadDouble = false; ///< another one was listed with the same key: only his number tells him from that one
    bool isHidden = false;  ///< by the filter
};

/// Who is on the server, by the newest list that it gave, and how old that list is. Main thread only.
class PlayerRoster : public QObject
{
    Q_OBJECT
public:
    /// Tells the time; later calls never go back.
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// Numbers go to other players when players leave. A list that is older than this is read again before it is used.
    static constexpr std::chrono::seconds newFor{5};

    /// How a fetch went.
    struct Fetch {
        enum Outcome { Whole, MaybeIncomplete, Failed, CalledOff } outcome;
        QString error; ///< why it failed
    };

    /// `server` outlives the roster.
    PlayerRoster(KelServer &server, Clock clock, QObject *parent = nullptr);

    /// The rows of the table, with its selection.
    ArrayController<PlayerRow> &rows() { return m_rows; }
    const QList<PlayerRow> &players() const { return m_rows.content(); }
    QList<ChosenPlayer> selected() const;

    /// Asks the server for the list and merges it into the rows. A list that may be incomplete removes nobody, one that
    /// does not come changes nothing. Takes no turn: the action that calls it has one.
    QCoro::Task<Fetch> fetch();
    /// Nobody is known any more.
    void forget();
    /// The server has been told to put players out: somebody new may have their numbers at once. However young the
    /// list is, it is not new any more.
    void outdate() { m_isOutdated = true; }

    /// Whether a list has come, be it incomplete.
    bool isFetched() const { return m_isFetched; }
    /// How long ago the newest complete list was asked for; nothing before one came.
    std::optional<std::chrono::seconds> age() const;
    /// Whether somebody may be missing in the newest list.
    bool mayBeIncomplete() const { return m_mayBeIncomplete; }
    /// Whether the newest list is complete, not outdated and not older than newFor.
    bool isNew() const;

    /// @return who `chosen` is in the newest list, with his present number.
    /// @param whyNot  receives why nobody is returned, for the user.
    std::optional<PlayerRow> find(const ChosenPlayer &chosen, QString *whyNot) const;

signals:
    /// The rows, or what is known of them, have changed.
    void changed();

private:
    void take(const PlayerList &list);
    void takePart();
    QList<PlayerRow> withUnlisted(const PlayerList &list) const;

    KelServer &m_server;
    Clock m_clock;
    ArrayController<PlayerRow> m_rows;
    QString m_part; ///< of the list that is coming
    QTimer m_showingPart;
    std::optional<std::chrono::steady_clock::time_point> m_askedAt; ///< for the newest complete list
    bool m_isFetched = false;
    bool m_isTitleDue = false; ///< this server has sent one before
    bool m_mayBeIncomplete = false;
    bool m_isOutdated = false;
};
