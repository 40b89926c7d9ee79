#pragma once

#include "ActionQueue.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelServer.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QFile>
#include <QTemporaryDir>

/// A timer that fires when it is told to.
struct FakeTimer final : OneShotTimer {
    void start(qint64 seconds, std::function<void()> fired) override
    {
        wait = seconds;
        fire = std::move(fired);
    }
    void stop() override { wait.reset(); }
    std::optional<std::chrono::milliseconds> remaining() const override { return std::nullopt; }

    std::optional<qint64> wait; ///< seconds; nothing when stopped
    std::function<void()> fire;
};

struct RotationFixture {
    static QByteArray bytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void put(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QTemporaryDir folder;
    QString path = folder.filePath("FerrowRcon.exe.maprotate");
    Preferences preferences{folder.filePath("preferences.ini")};
    RecordedAlerts alerts;
    ScriptedExchange exchange;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    KelMapRotation maps{preferences, alerts, folder.path()};
    FakeTimer *timer = new FakeTimer; // owned by the next
    KelMessageRotation messages{
        {preferences, alerts, server, actions}, folder.path(), std::unique_ptr<OneShotTimer>(timer)};
};
