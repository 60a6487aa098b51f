// Whole transfers through the real serial driver, a real pseudo-terminal and
// the virtual radio, with each way the radio can misbehave.

#include "LinkTestData.h"
#include "RadioOnPty.h"
#include "TestSupport.h"

#include "core/AppState.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"

#include <QTest>

using namespace wr;
using namespace Qt::Literals::StringLiterals;
using wr::sim::RadioFaults;

Q_DECLARE_METATYPE(wr::sim::RadioFaults)

class TestLinkEndToEnd : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { test::initTestProcess(); }
    void init() { m_fixture = std::make_unique<test::Fixture>(); }
    void cleanup() { m_fixture.reset(); }

    void transfer_data();
    void transfer();

private:
    std::unique_ptr<test::Fixture> m_fixture;
};

void TestLinkEndToEnd::transfer_data()
{
    QTest::addColumn<bool>("read");
    QTest::addColumn<RadioFaults>("faults");
    QTest::addColumn<int>("rowsMoved"); // 188 read or 187 written when complete; else a question, answered Cancel

    QTest::newRow("read, noise before the ACK") << true << RadioFaults{.noiseBeforeAck = true} << 188;
    QTest::newRow("write, a dropped reply is resent") << false << RadioFaults{.dropReplyRow = 200} << 187;
    QTest::newRow("read, late replies") << true << RadioFaults{.delayMs = 20} << 188;
    QTest::newRow("silent: scan, Cancel") << true << RadioFaults{.silent = true} << 0;
    QTest::newRow("wrong id: Cancel") << true << RadioFaults{.wrongId = true} << 0;
    QTest::newRow("hang-up, Cancel keeps 20 rows") << true << RadioFaults{.hangUpAfterRows = 20} << 20;
    QTest::newRow("refused writes: radio untouched") << false << RadioFaults{.nakWrites = true} << 0;
}

void TestLinkEndToEnd::transfer()
{
    QFETCH(bool, read);
    QFETCH(RadioFaults, faults);
    QFETCH(int, rowsMoved);
    const bool completes = rowsMoved >= 187;

    test::RadioOnPty line(m_fixture->path(u"serial-ports"_s), faults);
    QVERIFY2(line.isOpen(), qPrintable(line.errorString()));
    test::fillPattern(line.radio.memory(), 7);
    const MemoryImage radioBefore = line.radio.memory();
    AppState &state = app();
    state.LanguageIndex = 0;
    state.LinkDirection = read ? 0 : 1;
    state.PortNumber = 200;
    test::fillPattern(state.image, 8);
    state.image.TakeSnapshot();
    const MemoryImage imageBefore = state.image;

    CloneEngine engine(state);
    QStringList asked, shown;
    CloneDriver driver(engine,
                       {[&](const QString &, const QString &text) { return asked.append(text), false; },
                        [&](CloneEngine::MessageIcon, const QString &, const QString &text) { shown.append(text); }});
    driver.start();
    QTRY_VERIFY_WITH_TIMEOUT(!driver.isRunning(), 60000);
    QCOMPARE(engine.Finished, completes);
    QCOMPARE(asked.size(), completes ? 0 : 1);
    QCOMPARE(shown, completes ? QStringList{read ? u"Reading completed!"_s : u"Writing completed!"_s} : QStringList{});
    // Row by row: what moved is an exact copy, everything else is as it was.
    const QList<int> moved = test::transferredRows(read).first(rowsMoved);
    for (int row = 0; row < MemoryImage::RowCount; ++row) {
        if (read)
            QCOMPARE(state.image.row(row), moved.contains(row) ? radioBefore.row(row) : imageBefore.row(row));
        else
            QCOMPARE(line.radio.memory().row(row), moved.contains(row) ? imageBefore.row(row) : radioBefore.row(row));
    }
    QCOMPARE(state.image.IsModified(), read && !completes && rowsMoved > 0);
    QVERIFY(read || state.image == imageBefore);
    QCOMPARE(line.radio.sessionsEnded(), completes ? 1 : 0); // "END" took the radio out of clone mode
}

QTEST_GUILESS_MAIN(TestLinkEndToEnd)
#include "TestLinkEndToEnd.moc"
