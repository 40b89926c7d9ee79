#pragma once

#include "Controls.h"
#include "PlaceholderTable.h"
#include "PlayerSendMessage.h"
#include "PlayersView.h"
#include "SessionFixture.h"
#include "TestPreferences.h"

#include <QAbstractProxyModel>
#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

using namespace std::chrono_literals;

/// A player whose address ends in `host`.
inline QString lineOf(int number, const QString &name, int host, int score = 0)
{
    return QStringLiteral("%1 %4 48 g%3 %2 lamps 0 192.0.2.%3:50074 77 25000\n")
        .arg(number)
        .arg(name)
        .arg(host)
        .arg(score);
}

inline QString line(int number, const QString &name, int score = 0)
{
    return lineOf(number, name, number, score);
}

inline const QString title = QStringLiteral("num score ping guid name team lastmsg address qport rate\n");

/// A connected session with three players in the list.
struct Players : SessionFixture {
    Players()
    {
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        list(line(1, "Ann", 9) + line(2, "Bob", 10) + line(3, "Cy", 8));
        view.setInFront(true);
        refresh();
        exchange.forgetSent();
    }

    void list(const QString &reply) { exchange.answer("teamstatus", ScriptedExchange::ok(reply)); }
    void press(const char *button) { control<QPushButton>(view, button)->click(); }
    void refresh()
    {
        press("refreshPlayersButton");
        QVERIFY(settle());
    }
    void filter(const QString &text) { control<QLineEdit>(view, "playerFilterField")->setText(text); }
    void select(const QStringList &names)
    {
        QItemSelectionModel *selection = table->selectionModel();
        selection->clear();
        for (int row = 0; row < table->model()->rowCount(); ++row) {
            const QModelIndex name = table->model()->index(row, 1);
            if (names.contains(name.data().toString()))
                selection->select(name, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    QStringList selected() const
    {
        QStringList names;
        for (const QModelIndex &name : table->selectionModel()->selectedRows(1))
            names.append(name.data().toString());
        return names;
    }
    QStringList shown() const
    {
        QStringList names;
        for (const QStringList &texts : shownRows(*table))
            names.append(texts.at(1));
        return names;
    }
    /// How many there are with those that the filter hides.
    int count() const { return qobject_cast<QAbstractProxyModel *>(table->model())->sourceModel()->rowCount(); }

    bool isEnabled(const char *button) const { return control<QPushButton>(view, button)->isEnabled(); }
    QString told() const { return control<QLabel>(view, "playerCountLabel")->text(); }

    std::chrono::steady_clock::time_point now{1h};
    TestPreferences preferences{folder};
    PlayersView view{server, actions, alerts, preferences, nullptr, [this] {
                         return now;
                     }};
    PlaceholderTable *table = control<PlaceholderTable>(view, "playersTableView");
};
