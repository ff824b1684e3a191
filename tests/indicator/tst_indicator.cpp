#include <QtTest>
class TstIndicator : public QObject { Q_OBJECT };
QTEST_APPLESS_MAIN(TstIndicator)
#include "tst_indicator.moc"
