#pragma once

#include "CatalogueReader.h"
#include "Catalogues.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelSettings.h"
#include "SessionFixture.h"

#include <QFile>

/// The shipped catalogues, with working copies in a folder of the test; connecting does not ask for them by itself.
struct CataloguesFixture : SessionFixture {
    /// Puts a catalogue into the user's folder; it is loaded only when the test does so.
    void write(const QString &extension, const QByteArray &xml)
    {
        QFile file(folder.filePath(QStringLiteral("FerrowRcon.exe.") + extension));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(xml), xml.size());
    }

    CatalogueReader reader{{QStringLiteral(FERROW_RESOURCES), folder.path()}, alerts, [] {
                           }};
    KelGametype gametypes{server, reader};
    KelSettings settings{server, reader};
    KelMapList maps{server, reader};
    KelPlaylists playlists{server, gametypes, maps, alerts, QStringLiteral(FERROW_RESOURCES)};
    Catalogues catalogues{gametypes, settings, maps, playlists};
};
