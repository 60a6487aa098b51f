#pragma once

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

namespace wr::test {

// Runs handler on the next modal dialog once it is up (the command that
// opens it blocks in exec()). A handler that fails a check leaves early; the
// dialog is then rejected, so the test reports the failure instead of
// waiting in exec() until its time-out. For GUI tests, which link Qt Widgets. A test
// for which no dialog may come deletes the returned watch at its end, so it
// never acts on a later test's dialog.
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
        if (shown && shown->isVisible() && QTest::currentTestFailed())
            shown->reject();
    });
    poll->start();
    return poll;
}

} // namespace wr::test
