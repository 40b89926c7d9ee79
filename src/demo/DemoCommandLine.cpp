#include "DemoCommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <functional>
#include <limits>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(DemoCommandLine)
};

/// Knows options and where their values go, and remembers the first value that is wrong.
class OptionReader
{
public:
    QCommandLineParser &parser() { return m_parser; }
    bool isSet(const char *name) const { return m_parser.isSet(QLatin1String(name)); }
    /// @return what is wrong; empty when every value could be taken.
    QString takeValues()
    {
        for (const std::function<void()> &take : m_takers)
            take();
        return m_error;
    }

    void add(const char *name, const QString &text, bool &target, bool value = true)
    {
        m_parser.addOption({QLatin1String(name), text});
        m_takers.append([this, name, &target, value] { target = isSet(name) ? value : target; });
    }
    /// @param take  gets the text of an option that is set, and tells what it should have been, or nothing.
    void add(const char *name, const QString &valueName, const QString &text,
             const std::function<QString(const QString &)> &take)
    {
        m_parser.addOption({QLatin1String(name), text, valueName});
        m_takers.append([this, name, take] {
            const QString value = m_parser.value(QLatin1String(name));
            const QString wanted = isSet(name) ? take(value) : QString();
            if (!wanted.isEmpty() && m_error.isEmpty())
                m_error = Text::tr("--%1 takes %2, not \"%3\".").arg(QLatin1String(name), wanted, value);
        });
    }
    template <typename Number>
    void addNumber(const char *name, const QString &valueName, const QString &text, quint64 highest, Number &target)
    {
        add(name, valueName, text, [highest, &target](const QString &value) {
            bool isNumber = false;
            const quint64 number = value.toULongLong(&isNumber);
            if (!isNumber || number > highest)
                return Text::tr("a whole number from 0 to %1").arg(highest);
            target = Number(static_cast<qint64>(number));
            return QString();
        });
    }
    void addMilliseconds(const char *name, const QString &text, std::chrono::milliseconds &target)
    {
        addNumber(name, Text::tr("MS"), text, 60'000, target);
    }
    void addProbability(const char *name, const QString &text, double &target)
    {
        add(name, Text::tr("P"), text, [&target](const QString &value) {
            bool isNumber = false;
            const double number = value.toDouble(&isNumber);
            if (!isNumber || !(number >= 0 && number <= 1))
                return Text::tr("a number from 0 to 1");
            target = number;
            return QString();
        });
    }
    void addMode(const char *name, const QString &text, std::optional<DemoMode> &target)
    {
        add(name, Text::tr("MODE"), text, [&target](const QString &value) {
            const qsizetype mode =
                QStringList{QStringLiteral("unranked"), QStringLiteral("playlists"), QStringLiteral("ranked")}.indexOf(
                    value);
            if (mode < 0)
                return Text::tr("unranked, playlists or ranked");
            target = static_cast<DemoMode>(mode);
            return QString();
        });
    }

private:
    QCommandLineParser m_parser;
    QList<std::function<void()>> m_takers;
    QString m_error;
};

void addFaults(OptionReader &reader, DemoFaults &faults)
{
    reader.addProbability("loss", Text::tr("Lose datagrams with this probability, 0 to 1."), faults.loss);
    reader.addMilliseconds("delay", Text::tr("Answer this many milliseconds later, 0 to 60000."), faults.delay);
    reader.addProbability("duplicate", Text::tr("Send datagrams twice with this probability, 0 to 1."),
                          faults.duplication);
    reader.addProbability("garbage", Text::tr("Answer with rubbish with this probability, 0 to 1."), faults.garbage);
    reader.add("reorder", Text::tr("Send the parts of a reply in another order."), faults.reorder);
    reader.add("silent", Text::tr("Answer nothing."), faults.silent);
    reader.addNumber("silent-after", Text::tr("N"),
                     Text::tr("Send only the first datagrams of a reply, up to 1000. Default 0: all."), 1000,
                     faults.silentAfter);
    reader.add("other-port", Text::tr("Answer from another port than the one that was asked."), faults.otherPort);
    reader.addMilliseconds("gap", Text::tr("Let this many milliseconds pass between the parts of a reply, 0 to 60000."),
                           faults.gap);
    reader.add("stranger", Text::tr("Let 127.0.0.2 send a false reply before each true one."), faults.stranger);
    reader.addMilliseconds(
        "throttle",
        Text::tr("Ignore what comes sooner than this many milliseconds after the last command that was answered, 0 to "
                 "60000."),
        faults.throttle);
    reader.addNumber(
        "lockout", Text::tr("N"),
        Text::tr(
            "Ignore for 180 seconds who sends more than this many requests within 30 seconds, up to 1000. Default 0: "
            "nobody."),
        1000, faults.lockout);
}

void addOptions(OptionReader &reader, DemoOptions &options, std::chrono::seconds &restartAfter)
{
    reader.parser().addOptions({{{QStringLiteral("h"), QStringLiteral("help")}, Text::tr("Show this help.")},
                                {{QStringLiteral("v"), QStringLiteral("version")}, Text::tr("Show the version.")}});
    reader.addNumber("port", Text::tr("PORT"), Text::tr("UDP port on 127.0.0.1, 0 to 65535. Default 0: any free one."),
                     65'535, options.port);
    reader.add(
        "password", Text::tr("TEXT"),
        Text::tr("Password to ask for. Others on this machine can read it in the list of processes: the environment "
                 "variable FERROW_DEMO_PASSWORD is the better place. Default: demo."),
        [&options](const QString &value) {
            options.password = value;
            return QString();
        });
    reader.add("ranked", Text::tr("Be a ranked server."), options.ranked);
    reader.add("playlists", Text::tr("Play playlists instead of the map rotation."), options.playlists);
    reader.addNumber("players", Text::tr("N"), Text::tr("About how many players there are, 0 to 1000. Default 12."),
                     DemoOptions::MaximumPlayers, options.players);
    reader.addNumber("seed", Text::tr("N"), Text::tr("Same number, same game. Default 1."),
                     std::numeric_limits<quint64>::max(), options.seed);
    reader.add("frozen", Text::tr("Let no time pass: nobody comes, goes or scores."), options.frozen);
    addFaults(reader, options.faults);
    reader.add("refusal-text", Text::tr("Refuse a wrong password with a text."), options.refusalText);
    reader.addNumber(
        "restart-after", Text::tr("S"),
        Text::tr("Go away this many seconds after the start, up to 86400, and come back 3 seconds later with a "
                 "new game. Default 0: never."),
        86'400, restartAfter);
    reader.addMode("restart-mode", Text::tr("Come back as unranked, playlists or ranked."), options.restartMode);
    reader.add("sparse", Text::tr("Know next to none of the variables of settings, gametypes and maps."),
               options.sparse);
    reader.add("no-count", Text::tr("List all variables without their number at the end."), options.dumpCount, false);
}

bool canBeSent(const QString &password)
{
    return std::all_of(password.cbegin(), password.cend(),
                       [](QChar c) { return c.unicode() >= 0x20 && c.unicode() < 0x100 && c != u'"' && c != u'\x7f'; });
}
} // namespace

DemoCommandLine DemoCommandLine::parse(const QStringList &arguments, const QString &environmentPassword)
{
    DemoCommandLine line;
    OptionReader reader;
    QCommandLineParser &parser = reader.parser();
    parser.setApplicationDescription(Text::tr(
        "A simulated game server for trying out the Kelvard Ferrow Remote Console. It listens on this machine only."));
    if (!environmentPassword.isEmpty())
        line.options.password = environmentPassword;
    std::chrono::seconds restartAfter{0};
    addOptions(reader, line.options, restartAfter);
    if (!parser.parse(arguments)) {
        line.task = Task::Refuse;
        line.text = parser.errorText();
        return line;
    }
    if (reader.isSet("help") || reader.isSet("version")) {
        line.task = Task::ShowText;
        line.text = reader.isSet("help")
                        ? parser.helpText()
                        : QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion() + u'\n';
        return line;
    }
    line.text = reader.takeValues();
    line.options.restartAfter = restartAfter;
    if (line.text.isEmpty() && !canBeSent(line.options.password))
        line.text =
            Text::tr("The password may hold no double quotes, no control characters and nothing outside Latin-1.");
    if (line.text.isEmpty() && line.options.restartMode && !reader.isSet("restart-after"))
        line.text = Text::tr("--%1 needs --%2.").arg(QStringLiteral("restart-mode"), QStringLiteral("restart-after"));
    if (line.text.isEmpty() && !parser.positionalArguments().isEmpty())
        line.text = Text::tr("There is no use for \"%1\".").arg(parser.positionalArguments().first());
    line.task = line.text.isEmpty() ? Task::Serve : Task::Refuse;
    return line;
}
