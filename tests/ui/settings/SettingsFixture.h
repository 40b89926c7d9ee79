#pragma once

#include "Catalogues.h"
#include "CataloguesFixture.h"
#include "Controls.h"
#include "DvarSetting.h"
#include "DvarSettingList.h"
#include "DvarSettingOutlineView.h"
#include "DvarValueEditor.h"
#include "SettingsOutlineModel.h"
#include "SettingsView.h"

#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>

inline QByteArray settingXml(const QByteArray &name, const QByteArray &dvar, const QByteArray &type,
                             const QByteArray &category, const QByteArray &description = "Nothing to tell.")
{
    return "<DvarSetting><name>" + name + "</name><dvar>" + dvar + "</dvar><type>" + type + "</type><category>" +
           category + "</category><description>" + description + "</description></DvarSetting>";
}

/// A view with catalogues of the test's own, on a session that has just connected. The server does not know h_lost.
struct SettingsFixture : CataloguesFixture {
    explicit SettingsFixture(SettingsView::Mode mode = SettingsView::Mode::Unranked)
        : isRanked(mode == SettingsView::Mode::Ranked), view(mode, server, actions, fetcher, settings, gametypes)
    {
        dump("20");
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        loadCatalogues();
        view.resize(740, 560);
        view.show();
    }

    void dump(const QString &timeLimit)
    {
        const QString text = "sv_ranked \"%1\"\nplaylist_enabled \"0\"\nh_time \"%2\"\nworld_gravity \"-.5\"\n"
                             "h_fire \"1\"\nh_cam \"0\"\nhouse_greeting \"hello\"\nrule_score \"100\"\n";
        exchange.answer("dvardump", ScriptedExchange::dump(text.arg(isRanked ? "2" : "1", timeLimit)));
    }

    /// Connects anew; what the dump lacks is then fetched. The first of it is on its way when it returns.
    void connectAndFetch()
    {
        server.setCatalogueLoader(&catalogues);
        exchange.forgetSent();
        exchange.hold();
        QCoro::Task<> connecting = server.connectToHost("192.0.2.1", "50960", "typed");
        exchange.release();
        awaited(std::move(connecting));
        QTRY_COMPARE(exchange.keptCount(), 1);
    }
    /// Gives the reply to `dvar` and all before it.
    void releaseUntilToldOf(const QString &dvar)
    {
        while (fetcher.isAwaited(dvar)) {
            QTRY_COMPARE(exchange.keptCount(), 1);
            exchange.release();
            QTRY_VERIFY(exchange.keptCount() == 1 || !fetcher.isAsking() || !fetcher.isAwaited(dvar));
        }
    }
    ~SettingsFixture()
    {
        server.disconnect();
        while (!actions.isIdle()) {
            server.cancelExchange();
            QCoreApplication::processEvents();
        }
    }

    void loadCatalogues()
    {
        write(isRanked ? QStringLiteral("gameSettingsRanked") : QStringLiteral("gameSettingsUnranked"),
              "<s><SettingInst><name>Match</name>" +
                  settingXml("Time limit", "h_time", "int", "Limits", "Minutes that a round lasts.") +
                  settingXml("Gravity", "world_gravity", "float", "Limits", "How fast things fall.") +
                  settingXml("Hits among mates", "h_fire", "bool", "rules", "Hurts the team as well.") +
                  settingXml("Replay", "h_cam", "Bool", "rules", "Shows the last moments.") +
                  settingXml("Lost switch", "h_lost", "BOOL", "rules") +
                  "</SettingInst><SettingInst><name>About</name>" +
                  settingXml("Message", "house_greeting", "string", "Texts") + "</SettingInst></s>");
        write(QStringLiteral("gametypes"), "<g><Gametype><name>Team</name><dvarName>crews</dvarName>" +
                                               settingXml("Score limit", "rule_score", "int", "Limits") +
                                               "</Gametype><Gametype><name>Duckboard</name></Gametype></g>");
        awaited(gametypes.loadGametypeList());
        awaited(settings.loadSettings());
    }

    SettingsOutlineModel &outline() const { return *static_cast<SettingsOutlineModel *>(tree().model()); }
    DvarSettingOutlineView &tree() const
    {
        return *control<DvarSettingOutlineView>(view, isRanked ? "rankedOutlineView" : "unrankedOutlineView");
    }
    QLineEdit *filterField() const { return control<QLineEdit>(view, "settingsFilterField"); }

    /// The value cell of the setting with this variable.
    QModelIndex valueOf(const QString &dvar) const
    {
        for (int category = 0; category < outline().rowCount(); ++category) {
            const QModelIndex parent = outline().index(category, 0);
            for (int row = 0; row < outline().rowCount(parent); ++row) {
                const QModelIndex value = outline().index(row, SettingsOutlineModel::ValueColumn, parent);
                if (outline().settingAt(value)->dvar() == dvar)
                    return value;
            }
        }
        return {};
    }
    QString shownValue(const QString &dvar) const { return valueOf(dvar).data().toString(); }

    /// Names of categories and settings from top to bottom, as far as the tree shows them; settings are indented.
    QStringList shownNames(const QTreeView &outlineView) const
    {
        QStringList names;
        QModelIndex index = outlineView.model()->index(0, 0);
        for (; index.isValid(); index = outlineView.indexBelow(index))
            names.append((index.parent().isValid() ? QStringLiteral("  ") : QString()) + index.data().toString());
        return names;
    }

    DvarValueEditor *editor() const { return tree().findChild<DvarValueEditor *>(QStringLiteral("dvarValueEditor")); }
    bool isHintShown() const
    {
        const auto *hint = tree().findChild<QLabel *>(QStringLiteral("dvarValueHint"));
        return hint != nullptr && hint->isVisible();
    }
    /// Opens the editor of a setting by key and types over its value.
    void type(const QString &dvar, const QString &text)
    {
        view.activateWindow();
        tree().setFocus();
        tree().setCurrentIndex(valueOf(dvar).siblingAtColumn(0));
        QTest::keyClick(&tree(), Qt::Key_F2);
        QVERIFY(editor() != nullptr);
        QTest::keyClicks(editor(), text);
    }
    void press(const QString &dvar, Qt::Key key)
    {
        tree().setCurrentIndex(valueOf(dvar));
        QTest::keyClick(&tree(), key);
    }

    /// An action of the context menu that the key brings up on the current row.
    QAction *menuAction(const QString &text) const
    {
        QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
        QCoreApplication::sendEvent(tree().viewport(), &byKey);
        for (QAction *action : tree().findChildren<QMenu *>("settingMenu").last()->actions()) {
            if (action->text() == text)
                return action;
        }
        return nullptr;
    }

    bool isRanked;
    SettingsView view;
};
