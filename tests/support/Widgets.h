#pragma once

// What the suites that drive windows share: typing, showing a window, and
// answering a modal dialog. For GUI tests, which link Qt Widgets.

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

namespace wr::test {

// Runs handler on the next modal dialog once it is up (the command that
// opens it blocks in exec()). A test for which no dialog may come deletes
// the returned watch at its end, so it never acts on a later test's dialog.
// A handler that fails a check returns early; the dialog is then closed, so
// the test fails instead of waiting for ever.
inline QPointer<QTimer> whenModal(std::function<void(QDialog *)> handler)
{
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, handler = std::move(handler)] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        poll->stop();
        poll->deleteLater();
        const QPointer<QDialog> shown = dialog;
        handler(dialog);
        if (QTest::currentTestFailed() && shown && shown->isVisible())
            shown->reject();
    });
    poll->start();
    return poll;
}

// Keys to whatever has the focus, one after the other: "\r" Enter, "\x1b"
// Esc, "\b" Backspace, any other character typed as it is, Chinese included
// (QTest::keyClicks takes ASCII only).
inline void type(const QString &keys)
{
    for (const QChar key : keys) {
        QWidget *target = QApplication::focusWidget();
        QVERIFY(target);
        if (key == u'\r')
            QTest::keyClick(target, Qt::Key_Return);
        else if (key == u'\x1b')
            QTest::keyClick(target, Qt::Key_Escape);
        else if (key == u'\b')
            QTest::keyClick(target, Qt::Key_Backspace);
        else if (key.unicode() < 0x80)
            QTest::keyClick(target, char(key.unicode()));
        else
            QTest::sendKeyEvent(QTest::Click, target, Qt::Key_unknown, QString(key), Qt::NoModifier);
    }
}

// Shows a window and makes it the active one, as a window manager would;
// fails the test when it never became active.
inline void showActive(QWidget *window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

} // namespace wr::test
