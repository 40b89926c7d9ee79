#pragma once

#include "CatalogueReader.h"
#include "KelServer.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <initializer_list>
#include <utility>

/// A session that is connected to a scripted server.
struct ScriptedSession {
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};

    /// Starts to connect to a server with these variables besides those that every server has.
    QCoro::Task<> connectTo(std::initializer_list<std::pair<QString, QString>> dvars, const QString &ranked = "1")
    {
        QString mode = QStringLiteral("sv_ranked \"%1\"\nplaylist_enabled \"0\"\n").arg(ranked);
        for (const auto &[name, value] : dvars)
            mode += QStringLiteral("%1 \"%2\"\n").arg(name, value);
        exchange.answer(QStringLiteral("dvardump"), ScriptedExchange::dump(mode));
        return server.connectToHost(QStringLiteral("127.0.0.1"), QStringLiteral("50960"), QStringLiteral("secret"));
    }
};

/// The two folders of the catalogues, in a place that goes with the test.
class ScriptedFolders
{
public:
    ScriptedFolders()
    {
        for (const char *folder : {"shipped", "user"})
            QVERIFY(QDir(m_root.path()).mkdir(folder));
    }

    CatalogueFolders folders() const { return {m_root.filePath("shipped"), m_root.filePath("user")}; }
    QString shipped(const QString &extension) const
    {
        return m_root.filePath("shipped/FerrowRcon.default." + extension);
    }
    QString user(const QString &extension) const { return m_root.filePath("user/FerrowRcon.exe." + extension); }

    /// Writes a file that looks as if it had been written `age` seconds ago.
    static bool write(const QString &path, const QByteArray &content, int age = 0)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
            return false;
        return file.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime);
    }

    static QByteArray bytes(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
    }

private:
    QTemporaryDir m_root;
};
