#pragma once

#include <QList>
#include <QMessageBox>
#include <QString>
#include <QStringList>

class QWidget;

namespace wr {

// Every message box of the program goes through here, so that tests can
// answer a modal question in advance and check what the user was shown.
class MessageBox
{
public:
    using Button = QMessageBox::StandardButton;
    using Buttons = QMessageBox::StandardButtons;

    struct Shown
    {
        QMessageBox::Icon icon;
        QString title;
        QString text;
        Buttons buttons;
        Button defaultButton;
        Button answer;
    };

    static Button show(QWidget *parent, QMessageBox::Icon icon, const QString &title, const QString &text,
                       Buttons buttons = QMessageBox::Ok, Button defaultButton = QMessageBox::NoButton);

    // Test hooks. Queued answers are used in order instead of showing a box.
    // With auto-answer on and nothing queued, a box answers its default
    // button (or its only button) without being shown.
    static void setNextAnswer(Button answer);
    static void setAutoAnswer(bool on);
    static QList<Shown> history();
    static void clearHistory();
    static void reset(); // queue, auto-answer and history
};

// Open and save dialogs, with the same kind of test hook.
class FileDialog
{
public:
    // filter is a Qt name filter such as "tw Files (*.tw)". An empty result
    // means the user cancelled.
    static QString getOpenFileName(QWidget *parent, const QString &title, const QString &directory,
                                   const QString &filter);
    // Asks before overwriting an existing file.
    static QString getSaveFileName(QWidget *parent, const QString &title, const QString &proposed,
                                   const QString &filter);

    // Test hooks. The next dialog returns this name without being shown; an
    // empty name answers as a cancelled dialog. history() lists the folder or
    // proposed name each dialog opened with, answered or shown.
    static void setNextFileName(const QString &fileName);
    static QStringList history();
    static QString lastFilter(); // of the last dialog, answered or shown
    static void reset(); // names and history
};

} // namespace wr
