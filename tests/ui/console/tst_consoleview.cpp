#include "ConsoleView.h"
#include "Controls.h"
#include "HistoryStepper.h"
#include "SessionFixture.h"
#include "TranscriptView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>

struct TypingFixture : SessionFixture {
    TypingFixture()
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
        TypingFixture console;
        for (const char *command : {"a", "b", "b"})
            console.type(QLatin1String(command));
        QVERIFY(console.settle());
        QVERIFY(!console.input->isUndoAvailable()); // a password may have been typed
        QCOMPARE(console.stepper->text(), "New");
        QStringList seen;
        for (int i = 0; i < 4; ++i) {
            QTest::keyClick(console.input, Qt::Key_Up);
            seen.append(console.input->text());
        }
        QCOMPARE(seen, QStringList({"b", "b", "a", "a"})); // duplicates are kept
        QCOMPARE(console.stepper->text(), u"\u22123"_qs);  // the third from the end
        console.stepper->setValue(0);
        QCOMPARE(console.input->text(), "b");
        QTest::keyClick(console.input, Qt::Key_Down);
        QVERIFY(console.input->text().isEmpty());
        QCOMPARE(console.exchange.sent().size(), 3); // stepping sends nothing
    }

    void theTabKeyLeavesThePage_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("way");
        QTest::newRow("forwards") << int(Qt::Key_Tab) << "numericUpDownCommandCursor elsewhere consoleInput";
        QTest::newRow("backwards") << int(Qt::Key_Backtab) << "consoleOutput elsewhere numericUpDownCommandCursor";
    }
    void theTabKeyLeavesThePage()
    {
        QFETCH(int, key);
        QFETCH(QString, way);
        TypingFixture console;
        QWidget window;
        auto *view = new ConsoleView(console.server, console.actions, &window);
        auto *elsewhere = new QLineEdit(&window);
        elsewhere->setObjectName("elsewhere");
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(view);
        layout->addWidget(elsewhere);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        view->setFocus();
        QStringList seen;
        for (int i = 0; i < 3; ++i) {
            QTest::keyClick(window.focusWidget(), Qt::Key(key));
            seen.append(window.focusWidget()->objectName());
        }
        QCOMPARE(seen.join(' '), way);
    }

    void connectingClearsTranscriptAndHistory()
    {
        TypingFixture console;
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

    void copiesWhatWasAppended_data()
    {
        QTest::addColumn<QStringList>("appended");
        const QString megabytes = QString("0123456789").repeated(300000);
        QTest::newRow("a line of megabytes, piece by piece") << QStringList{megabytes, megabytes + '\n', "end"};
        QTest::newRow("line breaks of every kind") << QStringList{"a\r\nb\rc\n\n\r\n", "d\u2029e\u2028f\n"};
        QTest::newRow("signs of two surrogates")
            << QStringList{"x" + QString(u"\U0001f600"_qs).repeated(50000), "x", QString(u"\U0001f600"_qs)};
        QTest::newRow("control characters") << QStringList{u"\u0001\u001b\u0085\u009f\u00ad\n"_qs};
    }
    void copiesWhatWasAppended()
    {
        QFETCH(QStringList, appended);
        TranscriptView transcript;
        for (const QString &text : appended)
            transcript.appendConsoleMessage(text);
        for (QTextBlock block = transcript.document()->begin(); block.isValid(); block = block.next()) {
            QVERIFY(block.length() <= 65538); // what is laid out at once
            QVERIFY(!block.text().startsWith(u"\U0001f600"_qs.at(1)));
        }
        transcript.selectAll();
        QTest::keyClick(&transcript, Qt::Key_C, Qt::ControlModifier);
        const QString whole = appended.join(QString());
        QVERIFY(QGuiApplication::clipboard()->text() == whole); // a difference would be shown as megabytes
    }

    void aRefusedLineStaysInTheField()
    {
        TypingFixture console;
        console.input->setText(u"say \u0436"_qs);
        QTest::keyClick(console.input, Qt::Key_Return);
        QVERIFY(console.settle());
        QVERIFY(console.exchange.sent().isEmpty());
        QCOMPARE(console.input->text(), u"say \u0436"_qs);
        QCOMPARE(console.output->toPlainText(),
                 u"] say \u0436\nThe game cannot show these characters: \u0436. Nothing was sent.\n"_qs);
        console.input->setText(u"a \u0436"_qs);
        console.view.consoleInputDidChange();
        console.input->setText("typed on");
        QVERIFY(console.settle());
        QCOMPARE(console.input->text(), "typed on");
        QTest::keyClick(console.input, Qt::Key_Up);
        QCOMPARE(console.input->text(), u"a \u0436"_qs); // not lost
    }

    void aLineThatWasCalledOffComesBack_data()
    {
        QTest::addColumn<QString>("typedMeanwhile");
        QTest::addColumn<QString>("inTheField");
        QTest::newRow("to the empty field") << ""
                                            << "second";
        QTest::newRow("not over another one") << "third"
                                              << "third";
    }
    void aLineThatWasCalledOffComesBack()
    {
        QFETCH(QString, typedMeanwhile);
        TypingFixture console;
        console.exchange.hold();
        console.type("first");
        console.type("second"); // waits
        QTest::keyClicks(console.input, typedMeanwhile);
        console.actions.dropWaiting();
        console.server.cancelExchange();
        QCOMPARE(console.sent(), QStringList("first"));
        QTEST(console.input->text(), "inTheField");
    }

    void forgetsItsOldestLinesUnderTheReadersEyes()
    {
        TranscriptView transcript;
        transcript.resize(400, 200);
        transcript.show();
        QVERIFY(QTest::qWaitForWindowExposed(&transcript));
        const auto append = [&transcript](int from, int to) {
            QString text;
            for (int number = from; number < to; ++number)
                text += QString::number(number) + '\n';
            transcript.appendConsoleMessage(text);
        };
        const auto firstShown = [&transcript] {
            return transcript.cursorForPosition(QPoint(5, 5)).block().text();
        };
        append(0, 210'000);
        transcript.verticalScrollBar()->setValue(150'000);
        QCOMPARE(firstShown(), "150000");
        append(210'000, 219'990);
        QCOMPARE(transcript.blockCount(), 219'991); // not a few at each line: the whole text is moved
        append(219'990, 220'010);
        QCOMPARE(transcript.blockCount(), 200'000);
        QCOMPARE(firstShown(), "150000");
        QVERIFY(transcript.document()->lastBlock().previous().text() == "220009");
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
