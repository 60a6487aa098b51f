#pragma once

#include "TestSupport.h"
#include "core/SettingsStore.h"
#include "shell/MDIForm1.h"
#include "shell/MessageBox.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace wr::test {

// A main window on a settings file of the test's own, with the message box
// and file dialog seams reset. Unexpected message boxes answer their default
// button so a test never hangs on one; history() shows them all the same.
class ShellHarness
{
public:
    ShellHarness()
        : settings(fixture.path(QStringLiteral("settings.ini")))
    {
        MessageBox::reset();
        MessageBox::setAutoAnswer(true);
        FileDialog::reset();
    }

    ~ShellHarness()
    {
        MessageBox::reset();
        FileDialog::reset();
    }

    void storeSetting(const QString &name, const QString &value)
    {
        settings.SetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), name, value);
    }

    QString storedSetting(const QString &name) const
    {
        return settings.GetKeyValue(SettingsStore::Root::LocalMachine, SettingsStore::keyPath(), name);
    }

    MDIForm1 &open()
    {
        window = std::make_unique<MDIForm1>(&settings);
        return *window;
    }

    QAction *action(const QString &name) const
    {
        if (auto *menu = window->findChild<QMenu *>(name))
            return menu->menuAction();
        return window->findChild<QAction *>(name);
    }

    // Runs handler on the next modal dialog once it is up (the command that
    // opens it blocks in exec()).
    static void whenModal(std::function<void(QDialog *)> handler)
    {
        auto *poll = new QTimer;
        poll->setInterval(10);
        QObject::connect(poll, &QTimer::timeout, poll, [poll, handler = std::move(handler)] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return;
            poll->stop();
            poll->deleteLater();
            handler(dialog);
        });
        poll->start();
    }

    Fixture fixture;
    SettingsStore settings;
    std::unique_ptr<MDIForm1> window;
};

} // namespace wr::test
