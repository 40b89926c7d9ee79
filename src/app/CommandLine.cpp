#include "CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

struct Options {
    Options()
    {
        parser.setApplicationDescription(Text::tr(
            "Remote administration of a game server.\n\n"
            "With --connect the password is taken from the environment variable FERROW_RCON_PASSWORD, else from the "
            "saved server, or asked for."));
        // "-reverse" and its like are Qt's own, and not the letters "-v" and others.
        parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        parser.addOptions({help, version, target, demo});
    }

    QCommandLineOption help{{QStringLiteral("h"), QStringLiteral("help")}, Text::tr("Shows this text.")};
    QCommandLineOption version{{QStringLiteral("v"), QStringLiteral("version")}, Text::tr("Shows the version.")};
    QCommandLineOption target{
        QStringLiteral("connect"),
        Text::tr("Opens connected to the server at HOST:PORT, or to the saved server of this label."),
        Text::tr("HOST:PORT")};
    QCommandLineOption demo{QStringLiteral("demo"), Text::tr("Opens connected to the built-in demo server.")};
    QCommandLineParser parser;
};
} // namespace

static CommandLine faulty(const QString &error)
{
    CommandLine line;
    line.error = error;
    return line;
}

QString CommandLine::version()
{
    return QStringLiteral(FERROW_VERSION);
}

QString CommandLine::answerWithoutDisplay(const QStringList &arguments)
{
    Options options;
    options.parser.parse(arguments); // what else is on the line is judged later
    if (options.parser.isSet(options.help)) {
        const QString text = options.parser.helpText();
        return Text::tr("Usage: ferrow-rcon [options]\n") + text.section(QLatin1Char('\n'), 1);
    }
    if (options.parser.isSet(options.version))
        return QStringLiteral("ferrow-rcon %1\n").arg(version());
    return {};
}

CommandLine CommandLine::parse(const QStringList &arguments)
{
    Options options;
    if (!options.parser.parse(arguments))
        return faulty(options.parser.errorText());
    const QStringList rest = options.parser.positionalArguments();
    if (!rest.isEmpty())
        return faulty(Text::tr("Unexpected argument \"%1\".").arg(rest.first()));
    CommandLine line;
    line.isDemo = options.parser.isSet(options.demo);
    if (!options.parser.isSet(options.target))
        return line;
    if (line.isDemo)
        return faulty(Text::tr("--connect and --demo exclude each other."));
    line.target = options.parser.value(options.target).trimmed();
    if (line.target.isEmpty() || line.target.startsWith(QLatin1Char(':')) || line.target.endsWith(QLatin1Char(':')))
        return faulty(
            Text::tr("--connect takes HOST:PORT, for example 192.0.2.10:50960, or the label of a saved server."));
    return line;
}
