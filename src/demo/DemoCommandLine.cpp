#include "DemoCommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(DemoCommandLine)
};

QList<QCommandLineOption> knownOptions()
{
    return {
        {{QStringLiteral("h"), QStringLiteral("help")}, Text::tr("Show this help.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, Text::tr("Show the version.")},
        {QStringLiteral("port"), Text::tr("UDP port on 127.0.0.1, 0 to 65535. Default 0: any free one."),
         Text::tr("PORT")},
        {QStringLiteral("password"),
         Text::tr("Password to ask for. Others on this machine can read it in the list of processes: the environment "
                  "variable "
                  "FERROW_DEMO_PASSWORD is the better place. Default: demo."),
         Text::tr("TEXT")},
        {QStringLiteral("ranked"), Text::tr("Be a ranked server.")},
        {QStringLiteral("playlists"), Text::tr("Play playlists instead of the map rotation.")},
        {QStringLiteral("players"), Text::tr("About how many players there are, 0 to 1000. Default 12."),
         Text::tr("N")},
        {QStringLiteral("seed"), Text::tr("Same number, same game. Default 1."), Text::tr("N")},
        {QStringLiteral("frozen"), Text::tr("Let no time pass: nobody comes, goes or scores.")},
        {QStringLiteral("loss"), Text::tr("Lose datagrams with this probability, 0 to 1."), Text::tr("P")},
        {QStringLiteral("delay"), Text::tr("Answer this many milliseconds later, 0 to 60000."), Text::tr("MS")},
        {QStringLiteral("duplicate"), Text::tr("Send datagrams twice with this probability, 0 to 1."), Text::tr("P")},
        {QStringLiteral("garbage"), Text::tr("Answer with rubbish with this probability, 0 to 1."), Text::tr("P")},
        {QStringLiteral("reorder"), Text::tr("Send the parts of a reply in another order.")},
        {QStringLiteral("silent"), Text::tr("Answer nothing.")},
        {QStringLiteral("silent-after"),
         Text::tr("Send only the first datagrams of a reply, up to 1000. Default 0: all."), Text::tr("N")},
        {QStringLiteral("other-port"), Text::tr("Answer from another port than the one that was asked.")},
        {QStringLiteral("refusal-text"), Text::tr("Refuse a wrong password with a text.")},
        {QStringLiteral("gap"), Text::tr("Let this many milliseconds pass between the parts of a reply, 0 to 60000."),
         Text::tr("MS")},
        {QStringLiteral("stranger"), Text::tr("Let 127.0.0.2 send a false reply before each true one.")},
        {QStringLiteral("throttle"),
         Text::tr("Ignore what comes sooner than this many milliseconds after the last command that was answered, 0 to "
                  "60000."),
         Text::tr("MS")},
        {QStringLiteral("lockout"),
         Text::tr(
             "Ignore for 180 seconds who sends more than this many requests within 30 seconds, up to 1000. Default 0: "
             "nobody."),
         Text::tr("N")},
        {QStringLiteral("restart-after"),
         Text::tr(
             "Go away this many seconds after the start, up to 86400, and come back 3 seconds later with a new game. "
             "Default 0: never."),
         Text::tr("S")},
        {QStringLiteral("restart-mode"), Text::tr("Come back as unranked, playlists or ranked."), Text::tr("MODE")},
        {QStringLiteral("sparse"), Text::tr("Know next to none of the variables of settings, gametypes and maps.")},
        {QStringLiteral("no-count"), Text::tr("List all variables without their number at the end.")},
    };
}

/// Reads the values of options and remembers the first that is wrong.
class OptionReader
{
public:
    explicit OptionReader(const QCommandLineParser &parser) : m_parser(parser) {}

    QString error() const { return m_error; }

    quint64 wholeNumber(const QString &name, quint64 fallback, quint64 highest)
    {
        const QString text = m_parser.value(name);
        if (!m_parser.isSet(name))
            return fallback;
        bool isNumber = false;
        const quint64 number = text.toULongLong(&isNumber);
        if (isNumber && number <= highest)
            return number;
        refuse(
            Text::tr("--%1 takes a whole number from 0 to %2, not \"%3\".").arg(name, QString::number(highest), text));
        return fallback;
    }

    double probability(const QString &name)
    {
        const QString text = m_parser.value(name);
        if (!m_parser.isSet(name))
            return 0;
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        if (isNumber && number >= 0 && number <= 1)
            return number;
        refuse(Text::tr("--%1 takes a number from 0 to 1, not \"%2\".").arg(name, text));
        return 0;
    }

    std::chrono::milliseconds milliseconds(const QString &name)
    {
        return std::chrono::milliseconds(static_cast<qint64>(wholeNumber(name, 0, 60'000)));
    }

    std::optional<DemoMode> mode(const QString &name)
    {
        if (!m_parser.isSet(name))
            return std::nullopt;
        const QString text = m_parser.value(name);
        if (text == u"unranked")
            return DemoMode::Unranked;
        if (text == u"playlists")
            return DemoMode::Playlists;
        if (text != u"ranked")
            refuse(Text::tr("--%1 takes unranked, playlists or ranked, not \"%2\".").arg(name, text));
        return DemoMode::Ranked;
    }

    /// Refuses an option that does nothing without another.
    void demand(const QString &name, const QString &other)
    {
        if (m_parser.isSet(name) && !m_parser.isSet(other))
            refuse(Text::tr("--%1 needs --%2.").arg(name, other));
    }

    QString password(const QString &environmentPassword)
    {
        const QString name = QStringLiteral("password");
        if (!m_parser.isSet(name) && environmentPassword.isEmpty())
            return DemoOptions().password;
        QString text = m_parser.isSet(name) ? m_parser.value(name) : environmentPassword;
        const bool canBeSent = std::all_of(text.cbegin(), text.cend(), [](QChar c) {
            return c.unicode() >= 0x20 && c.unicode() < 0x100 && c != u'"' && c != u'\x7f';
        });
        if (!canBeSent)
            refuse(
                Text::tr("The password may hold no double quotes, no control characters and nothing outside Latin-1."));
        return text;
    }

private:
    void refuse(const QString &error)
    {
        if (m_error.isEmpty())
            m_error = error;
    }

    const QCommandLineParser &m_parser;
    QString m_error;
};

DemoFaults readFaults(const QCommandLineParser &parser, OptionReader &reader)
{
    DemoFaults faults;
    faults.loss = reader.probability(QStringLiteral("loss"));
    faults.duplication = reader.probability(QStringLiteral("duplicate"));
    faults.garbage = reader.probability(QStringLiteral("garbage"));
    faults.reorder = parser.isSet(QStringLiteral("reorder"));
    faults.silent = parser.isSet(QStringLiteral("silent"));
    faults.silentAfter = static_cast<int>(reader.wholeNumber(QStringLiteral("silent-after"), 0, 1000));
    faults.otherPort = parser.isSet(QStringLiteral("other-port"));
    faults.stranger = parser.isSet(QStringLiteral("stranger"));
    faults.delay = reader.milliseconds(QStringLiteral("delay"));
    faults.gap = reader.milliseconds(QStringLiteral("gap"));
    faults.throttle = reader.milliseconds(QStringLiteral("throttle"));
    faults.lockout = static_cast<int>(reader.wholeNumber(QStringLiteral("lockout"), 0, 1000));
    return faults;
}

DemoOptions readOptions(const QCommandLineParser &parser, OptionReader &reader, const QString &environmentPassword)
{
    DemoOptions options;
    options.port = static_cast<quint16>(reader.wholeNumber(QStringLiteral("port"), options.port, 65'535));
    options.password = reader.password(environmentPassword);
    options.ranked = parser.isSet(QStringLiteral("ranked"));
    options.playlists = parser.isSet(QStringLiteral("playlists"));
    options.players = static_cast<int>(reader.wholeNumber(
        QStringLiteral("players"), static_cast<quint64>(options.players), DemoOptions::MaximumPlayers));
    options.seed = reader.wholeNumber(QStringLiteral("seed"), options.seed, std::numeric_limits<quint64>::max());
    options.frozen = parser.isSet(QStringLiteral("frozen"));
    options.refusalText = parser.isSet(QStringLiteral("refusal-text"));
    options.sparse = parser.isSet(QStringLiteral("sparse"));
    options.dumpCount = !parser.isSet(QStringLiteral("no-count"));
    options.restartAfter =
        std::chrono::seconds(static_cast<qint64>(reader.wholeNumber(QStringLiteral("restart-after"), 0, 86'400)));
    options.restartMode = reader.mode(QStringLiteral("restart-mode"));
    reader.demand(QStringLiteral("restart-mode"), QStringLiteral("restart-after"));
    options.faults = readFaults(parser, reader);
    return options;
}
} // namespace

DemoCommandLine DemoCommandLine::parse(const QStringList &arguments, const QString &environmentPassword)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(Text::tr(
        "A simulated game server for trying out the Kelvard Ferrow Remote Console. It listens on this machine only."));
    parser.addOptions(knownOptions());
    DemoCommandLine line;
    if (!parser.parse(arguments)) {
        line.task = Task::Refuse;
        line.text = parser.errorText();
        return line;
    }
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("version"))) {
        line.task = Task::ShowText;
        line.text = parser.isSet(QStringLiteral("help"))
                        ? parser.helpText()
                        : QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion() + u'\n';
        return line;
    }
    OptionReader reader(parser);
    line.options = readOptions(parser, reader, environmentPassword);
    line.text = reader.error();
    if (line.text.isEmpty() && !parser.positionalArguments().isEmpty())
        line.text = Text::tr("There is no use for \"%1\".").arg(parser.positionalArguments().first());
    line.task = line.text.isEmpty() ? Task::Serve : Task::Refuse;
    return line;
}
