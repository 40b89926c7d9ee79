#include "ConsoleView.h"
#include "Controls.h"
#include "HistoryStepper.h"
#include "SessionFixture.h"
#include "TranscriptView.h"

#include <QLineEdit>
#include <QScrollBar>
#include <QTextBlock>

struct Console : SessionFixture {
    Console()
    {
        exchange.answerEverything(ScriptedExchange::ok("done\n"));
        connectToServer();
    }
    void type(const QString &line)
    {
        QTest::keyClicks(input, line);
        QTest::keyClick(input, Qt::Key_Return);
    }

    ConsoleView view{server, actions};
    QLineEdit *input = control<QLineEdit>(view, "consoleInput");
    TranscriptView *output = control<TranscriptView>(view, "consoleOutput");
    HistoryStepper *stepper = control<HistoryStepper>(view, "numericUpDownCommandCursor");
};

class ConsoleViewTest : public QObject
{
    Q_OBJECT
private slots:
    void stepsThroughTheHistory()
    {
        Console console;
        HistoryStepper *stepper = console.stepper;
        QCOMPARE(stepper->maximum(), -1);
        for (const char *command : {"a", "b", "b"})
            console.type(QLatin1String(command));
        QVERIFY(console.settle());
        QVERIFY(!console.input->isUndoAvailable()); // a password may have been typed
        QCOMPARE(stepper->minimum(), -1);
        QCOMPARE(stepper->maximum(), 2); // duplicates are kept
        QLineEdit *input = console.input;
        QStringList seen;
        for (int i = 0; i < 4; ++i) {
            QTest::keyClick(input, Qt::Key_Up);
            seen.append(input->text());
        }
        QCOMPARE(seen, QStringList({"b", "b", "a", "a"}));
        stepper->setValue(0);
        QCOMPARE(input->text(), "b");
        QTest::keyClick(input, Qt::Key_Down);
        QVERIFY(input->text().isEmpty());
        QCOMPARE(console.exchange.sent().size(), 3); // stepping sends nothing
    }

    void theFocusOfThePageGoesToTheCommandLine()
    {
        Console console;
        console.view.setFocus();
        QCOMPARE(console.view.focusWidget(), console.input);
    }

    void typingOnIsNotDisturbedByTheReply()
    {
        Console console;
        console.exchange.hold();
        console.type("slow");
        QTest::keyClick(console.input, Qt::Key_Up);
        QCOMPARE(console.input->text(), "slow");
        QTest::keyClicks(console.input, "er");
        console.exchange.release();
        QVERIFY(console.settle());
        QCOMPARE(console.input->text(), "slower");
    }

    void connectingClearsTranscriptAndHistory()
    {
        Console console;
        console.type("status");
        QVERIFY(console.settle());
        QCOMPARE(console.output->toPlainText(), "] status\ndone\n");
        console.server.disconnect();
        QVERIFY(!console.input->isEnabled());
        console.connectToServer();
        QVERIFY(console.input->isEnabled());
        QVERIFY(console.output->toPlainText().isEmpty());
        QCOMPARE(console.stepper->maximum(), -1);
        console.stepper->stepBy(1);
        QVERIFY(console.input->text().isEmpty());
    }

    void followsItsEndOnlyWhileTheReaderIsThere()
    {
        TranscriptView transcript;
        transcript.resize(400, 200);
        transcript.show();
        QVERIFY(QTest::qWaitForWindowExposed(&transcript));
        QScrollBar *bar = transcript.verticalScrollBar();
        for (int i = 0; i < 200; ++i)
            transcript.appendConsoleMessage("line\n");
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
        bar->setValue(20);
        transcript.appendConsoleMessage("more\nand more\n");
        QCOMPARE(bar->value(), 20);
        bar->setValue(bar->maximum());
        transcript.appendConsoleMessage(QString(5000, u'x') + "\nend");
        QCOMPARE(bar->value(), bar->maximum());
    }

    void standsAtItsEndWhenItComesIntoView()
    {
        // Filled behind another tab, where lines are not yet laid out.
        TranscriptView transcript;
        for (int i = 0; i < 60; ++i)
            transcript.appendConsoleMessage(
                QStringLiteral("a reply with words that do not fit one line ").repeated(i % 9) + "\nshort\n");
        transcript.resize(400, 200);
        transcript.show();
        QVERIFY(QTest::qWaitForWindowExposed(&transcript));
        const QScrollBar *bar = transcript.verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
        transcript.resize(250, 200);
        transcript.grab();
        QCOMPARE(bar->value(), bar->maximum());
    }

    void aLineOfAnyLengthIsBroken()
    {
        TranscriptView transcript;
        transcript.appendConsoleMessage(QString(1500, QLatin1Char('a')));
        transcript.appendConsoleMessage(QString(1000000, QLatin1Char('b')) + QLatin1Char('\n'));
        QTextBlock block = transcript.document()->begin();
        qsizetype length = 0;
        for (; block.isValid(); block = block.next()) {
            QVERIFY(block.text().size() <= 2000);
            length += block.text().size();
        }
        QCOMPARE(length, qsizetype(1001500));
    }

    void keepsTheReadersSelection()
    {
        TranscriptView transcript;
        transcript.appendConsoleMessage("alpha beta");
        QTextCursor cursor = transcript.textCursor();
        cursor.setPosition(0);
        cursor.setPosition(10, QTextCursor::KeepAnchor);
        transcript.setTextCursor(cursor);
        transcript.appendConsoleMessage(" gamma");
        QCOMPARE(transcript.textCursor().selectedText(), "alpha beta");
    }
};

QTEST_MAIN(ConsoleViewTest)
#include "tst_consoleview.moc"
