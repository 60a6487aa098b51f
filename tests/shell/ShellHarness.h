#pragma once

#include "Widgets.h"
#include "TestSuite.h"
#include "channels/ChannelRecord.h"
#include "core/BandLimits.h"
#include "core/SettingsStore.h"
#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "file/DataFile.h"
#include "link/PortCatalogue.h"
#include "shell/MDIForm1.h"
#include "ui/MessageBox.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMetaEnum>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace wr::test {

// A main window on a settings file and a data folder in the test's own
// folder, with the message box, file dialog and port list seams reset.
// Unexpected message boxes answer their default button so a test never hangs
// on one; history() shows them all the same.
class ShellHarness
{
public:
    explicit ShellHarness(const QString &testFolder)
        : folder(testFolder)
        , settings(testFolder + QStringLiteral("/settings.ini"))
    {
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
        FileDialog::reset();
    }
    ~ShellHarness()
    {
        MessageBox::reset();
        FileDialog::reset();
        setSystemPortSource({});
        setSerialPortsFolder({});
    }

    void storeSetting(const QString &name, const QString &value)
    {
        settings.SetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), name, value);
    }
    QString storedSetting(const QString &name) const
    {
        return settings.GetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), name);
    }

    // language < 0 leaves the setting unset.
    MDIForm1 &open(int language = -1)
    {
        if (language >= 0)
            storeSetting(QStringLiteral("language"), QString::number(language));
        window = std::make_unique<MDIForm1>(&settings);
        window->setBackupFolder(backupFolder());
        return *window;
    }
    // The window opened and shown; false when it never became active.
    bool show(int language = -1)
    {
        open(language).show();
        return QTest::qWaitForWindowActive(window.get());
    }
    // The automatic backups go to the test's own data folder.
    QString dataFolder() const { return folder + QStringLiteral("/data"); }
    QString backupFolder() const { return dataFolder() + QStringLiteral("/backups"); }

    QAction *action(const QString &name) const
    {
        if (auto *menu = window->findChild<QMenu *>(name))
            return menu->menuAction();
        return window->findChild<QAction *>(name);
    }
    void trigger(const QString &name) const { action(name)->trigger(); }
    // A value typed into the grid only: the image does not know it yet.
    void editRx(int channel, const QString &rx) const { window->channelList()->setChannelRx(channel, rx); }
    QString gridRx(int channel) const { return window->channelList()->cellText(channel, 1); }
    static QString rxOf(const QByteArray &image, int channel)
    {
        return ReadChannelTexts(imageOf(image), channel, 0).rx;
    }
    static QString imageRx(int channel) { return rxOf(app().image.bytes(), channel); }
    // "Icon|title|text" of every message box so far.
    static QStringList shownBoxes()
    {
        QStringList boxes;
        for (const MessageBox::Shown &box : MessageBox::history())
            boxes << QLatin1StringView(QMetaEnum::fromType<QMessageBox::Icon>().valueToKey(box.icon)) + u'|' + box.title + u'|' + box.text;
        return boxes;
    }
    QString panel(int number) const
    {
        return window->findChild<QLabel *>(QStringLiteral("MSBar_Panel%1").arg(number))->text();
    }

    // An image with channels first.. on <base + n % 30>.12500 MHz and the
    // band limits a radio reports.
    static QByteArray imageWithChannels(int first, int count, int baseMHz = 430)
    {
        MemoryImage image = freshImage();
        for (int channel = first; channel < first + count; ++channel) {
            const QString rx = QStringLiteral("%1.12500").arg(baseMHz + channel % 30);
            CreateChannel(image, channel);
            SaveChannel(image, channel,
                        {rx, rx, QStringLiteral("88.5"), QStringLiteral("D023N"), PowerText(true, 0),
                         BandwidthText(true, 0), ScanAddText(true, 0), BclText(ChannelRecord::Bcl::Off, 0)});
        }
        WriteDefaultBandLimits(image);
        return image.bytes();
    }

    // A data file of an image's bytes, and the receive frequency of a
    // channel of one on disk.
    static QByteArray fileOf(const QByteArray &bytes) { return DataFile::Encode(imageOf(bytes)).value_or(QByteArray()); }
    static bool writeDataFile(const QString &path, const QByteArray &bytes) { return writeFile(path, fileOf(bytes)); }
    static QString rxInFile(const QString &path, int channel) { return rxOf(DataFile::Read(path).image, channel); }

    QString folder;
    SettingsStore settings;
    std::unique_ptr<MDIForm1> window;
};

// The base of the main window's suites: a fresh harness `h` for every test
// function, in its temporary folder.
class ShellSuite : public Suite
{
protected:
    void setUp() override { h.emplace(tempFolder()); }
    void tearDown() override { h.reset(); }

    std::optional<ShellHarness> h;
};

} // namespace wr::test
