#include "SeqDiff.h"

#include <QtTest>

class TestEngine : public QObject
{
    Q_OBJECT
private slots:
    void selfTestPasses() { QVERIFY(SeqDiff::SelfTest()); }
};

QTEST_APPLESS_MAIN(TestEngine)
#include "tst_engine.moc"
