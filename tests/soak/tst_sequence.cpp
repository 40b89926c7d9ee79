#include "Sequence.h"

#include <QTest>

class SequenceTest : public QObject
{
    Q_OBJECT
private slots:
    void findsWhatGotLost_data()
    {
        QTest::addColumn<QString>("observed");
        QTest::addColumn<bool>("isGood");
        QTest::newRow("each once") << "a;a;b" << true;
        QTest::newRow("again, as its answer got lost") << "a;b;b" << true;
        QTest::newRow("more often than sent") << "a;b;b;b" << false;
        QTest::newRow("one lost") << "a;a" << false;
        QTest::newRow("in another order") << "b;a" << false;
        QTest::newRow("never due") << "a;b;c" << false;
    }
    void findsWhatGotLost()
    {
        QFETCH(QString, observed);
        const QList<ExpectedText> expected{{"a", 0, 1}, {"a", 1, 1}, {"b", 1, 2}}; // the first was called off
        QTEST(sequenceFault(expected, observed.split(u';')).isEmpty(), "isGood");
    }
};

QTEST_APPLESS_MAIN(SequenceTest)
#include "tst_sequence.moc"
