#include "core/AppState.h"
#include "TestSupport.h"
#include <QTest>
class TestMemoryImage : public QObject { Q_OBJECT
private Q_SLOTS:
    void placeholder() { wr::test::Fixture f; QVERIFY(!wr::app().image.IsModified()); }
};
QTEST_GUILESS_MAIN(TestMemoryImage)
#include "TestMemoryImage.moc"
