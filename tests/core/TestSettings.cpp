#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "TestSuite.h"

#include <QFile>
#include <QSettings>
#include <QTest>

using namespace wr;
using namespace Qt::StringLiterals;

// (Settings written at close and read at the next start are tried on the
// main window: TestMainWindow's settingsWrittenAtClose.)
class TestSettings : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void startUpReadsStoredValues_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("port");
        QTest::addColumn<int>("modelIndex");
        QTest::addColumn<int>("languageIndex");
        QTest::addColumn<int>("portNumber");
        QTest::newRow("nothing stored") << QString() << QString() << QString() << 1 << 1 << 1;
        QTest::newRow("plain values") << u"3"_s << u"0"_s << u"7"_s << 3 << 0 << 7;
        QTest::newRow("model 17 keeps low bits") << u"17"_s << u"2"_s << u"255"_s << 1 << 2 << 255;
        QTest::newRow("model 35") << u"35"_s << u"1"_s << u"1"_s << 3 << 1 << 1;
        QTest::newRow("model rounds") << u"2.5"_s << u"1"_s << u"1"_s << 3 << 1 << 1;
        QTest::newRow("garbage reads as 0") << u"abc"_s << u"x"_s << u"COM3"_s << 0 << 0 << 0;
        QTest::newRow("leading digits") << u"4xyz"_s << u"2 "_s << u"12abc"_s << 4 << 2 << 12;
        QTest::newRow("out of range falls back") << u"1"_s << u"7"_s << u"300"_s << 1 << 1 << 1;
        QTest::newRow("negative falls back") << u"1"_s << u"-1"_s << u"-5"_s << 1 << 1 << 1;
    }

    void startUpReadsStoredValues()
    {
        QFETCH(QString, model);
        QFETCH(QString, language);
        QFETCH(QString, port);
        SettingsStore store(iniFile());
        const auto root = SettingsStore::Root::LocalMachine;
        if (!model.isEmpty())
            QVERIFY(store.SetKeyValue(root, SettingsStore::keyPath(), u"Model"_s, model));
        if (!language.isEmpty())
            QVERIFY(store.SetKeyValue(root, SettingsStore::keyPath(), u"language"_s, language));
        if (!port.isEmpty())
            QVERIFY(store.SetKeyValue(root, SettingsStore::keyPath(), u"gbPort"_s, port));

        AppState state;
        StartUp(state, store);
        QTEST(int(state.ModelIndex), "modelIndex");
        QTEST(int(state.LanguageIndex), "languageIndex");
        QTEST(int(state.PortNumber), "portNumber");
    }

    void valueNamesIgnoreCase()
    {
        SettingsStore store(iniFile());
        const auto root = SettingsStore::Root::LocalMachine;
        QVERIFY(store.SetKeyValue(root, SettingsStore::keyPath(), u"language"_s, u"0"_s));
        QCOMPARE(store.GetKeyValue(root, SettingsStore::keyPath(), u"Language"_s), u"0"_s);
        QVERIFY(store.SetKeyValue(root, SettingsStore::keyPath(), u"LANGUAGE"_s, u"2"_s));
        QCOMPARE(store.GetKeyValue(root, SettingsStore::keyPath(), u"language"_s), u"2"_s);
        // One value, not two spellings of it.
        QSettings ini(iniFile(), QSettings::IniFormat);
        ini.beginGroup(u"SoftWare/ /WR-PD6T"_s);
        QCOMPARE(ini.childKeys().size(), 1);
    }

    void storedNumberReadsAsDecimal()
    {
        {
            QSettings ini(iniFile(), QSettings::IniFormat);
            ini.setValue(u"SoftWare/ /WR-PD6T/Language"_s, 2);
            ini.setValue(u"SoftWare/ /WR-PD6T/gbPort"_s, QStringList{u"a"_s, u"b"_s});
        }
        SettingsStore store(iniFile());
        QCOMPARE(store.GetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), u"Language"_s), u"2"_s);
        QCOMPARE(store.GetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), u"gbPort"_s), QString());
        AppState state;
        StartUp(state, store);
        QCOMPARE(state.LanguageIndex, 2);
        QCOMPARE(state.PortNumber, 1);
    }

    void unreadableOrUnwritableStore()
    {
        // A store whose folder is a regular file can be neither read nor written.
        const QString blocker = filePath(u"blocker"_s);
        QVERIFY(test::writeFile(blocker, "not a folder"));
        SettingsStore store(blocker + u"/settings.ini"_s);
        QVERIFY(!store.SetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), u"Model"_s, u"5"_s));
        AppState state;
        StartUp(state, store);
        QCOMPARE(state.ModelIndex, 1);
        QCOMPARE(state.LanguageIndex, 1);
        QCOMPARE(state.PortNumber, 1);
        SaveSettings(state, store); // silent

        // A damaged INI file reads as nothing stored.
        QVERIFY(test::writeFile(iniFile(), QByteArray("\x00\xFF[[[=\n==\n", 10)));
        AppState fromGarbage;
        StartUp(fromGarbage, SettingsStore(iniFile()));
        QCOMPARE(fromGarbage.LanguageIndex, 1);
    }

private:
    QString iniFile() const { return filePath(u"settings.ini"_s); }
};

QTEST_GUILESS_MAIN(TestSettings)
#include "TestSettings.moc"
