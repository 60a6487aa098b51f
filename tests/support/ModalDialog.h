#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>

namespace wr::test {

// Runs handler on the next modal dialog once it is up (the command that
// opens it blocks in exec()). For GUI tests, which link Qt Widgets.
inline void whenModal(std::function<void(QDialog *)> handler)
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

} // namespace wr::test
