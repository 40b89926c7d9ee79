#include "Fuzzing.h"
#include "ReadySession.h"

#include "ConfigurationFile.h"
#include "ConfigurationText.h"
#include "DvarSetting.h"
#include "DvarSettingList.h"

#include <QSet>
#include <QStringConverter>

#include <algorithm>

using Entries = QList<ConfigurationEntry>;

static void checkDecoding(const QByteArray &bytes, const QString &text)
{
    require(!text.contains(QChar::Null), "a text has no zero characters");
    if (bytes.contains('\0') || QStringConverter::encodingForData(bytes))
        return;
    require((bytes.isValidUtf8() ? text.toUtf8() : text.toLatin1()) == bytes, "decoding loses nothing");
}

static void checkEntries(const Entries &entries)
{
    QSet<QString> names;
    for (const ConfigurationEntry &entry : entries) {
        require(!entry.dvar.isEmpty() && !entry.dvar.contains(u' '), "a variable's name is a word");
        require(!entry.dvar.contains(u'\n') && !entry.value.contains(u'\n'), "an entry is a line");
        names.insert(entry.dvar);
    }
    require(names.size() == entries.size(), "a variable is set once");
}

/// Whether a line of a file can hold it.
static bool isPlain(const ConfigurationEntry &entry)
{
    const QString both = entry.dvar + entry.value;
    return !both.contains(u'"') && !entry.value.endsWith(u'\\') && !entry.dvar.startsWith("//") &&
           QString::fromUtf8(both.toUtf8()) == both;
}

static void checkWriting(const Entries &entries, const QHash<QString, QString> &dvars)
{
    static ReadySession session;
    QList<std::shared_ptr<DvarSetting>> settings;
    for (const ConfigurationEntry &entry : entries) {
        settings.append(std::make_shared<DvarSetting>(session.server));
        settings.constLast()->setName(entry.dvar);
        settings.constLast()->setDvar(entry.dvar);
    }
    const auto list = std::make_shared<DvarSettingList>();
    list->setSettings(settings);
    const ConfigurationContent content{{list}, {}, dvars};
    const Entries written = writtenEntries(content);
    for (const ConfigurationEntry &entry : written)
        require(entry.dvar != "rcon_password", "the password is not written");
    if (!std::all_of(written.begin(), written.end(), isPlain))
        return;
    const std::optional<QString> text = ConfigurationFile::decoded(configurationText(content, "today"));
    require(text && ConfigurationFile::entries(*text) == written, "what is written is read again");
}

static void fuzz(const QByteArray &bytes)
{
    const std::optional<QString> text = ConfigurationFile::decoded(bytes);
    if (!text)
        return;
    checkDecoding(bytes, *text);
    const Entries entries = ConfigurationFile::entries(*text);
    checkEntries(entries);
    QHash<QString, QString> dvars;
    for (const ConfigurationEntry &entry : entries)
        dvars.insert(entry.dvar, entry.value);
    checkWriting(entries, dvars);
}
