#include "ui/MessageBox.h"

#include <QFileDialog>
#include <QQueue>

namespace wr {

namespace {

struct MessageBoxHooks
{
    QQueue<MessageBox::Button> answers;
    bool autoAnswer = false;
    QList<MessageBox::Shown> history;
};

MessageBoxHooks &hooks()
{
    static MessageBoxHooks instance;
    return instance;
}

struct FileDialogHooks
{
    QQueue<QString> names;
    QStringList history;
    QString filter;
};

FileDialogHooks &fileHooks()
{
    static FileDialogHooks instance;
    return instance;
}

MessageBox::Button soleOrDefault(MessageBox::Buttons buttons, MessageBox::Button defaultButton)
{
    if (defaultButton != QMessageBox::NoButton)
        return defaultButton;
    for (uint bit = QMessageBox::FirstButton; bit <= QMessageBox::LastButton; bit <<= 1) {
        if (buttons.testFlag(static_cast<MessageBox::Button>(bit)))
            return static_cast<MessageBox::Button>(bit);
    }
    return QMessageBox::NoButton;
}

} // namespace

MessageBox::Button MessageBox::show(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                    const QString &text, Buttons buttons, Button defaultButton)
{
    MessageBoxHooks &h = hooks();
    Button answer = QMessageBox::NoButton;
    if (!h.answers.isEmpty()) {
        answer = h.answers.dequeue();
    } else if (h.autoAnswer) {
        answer = soleOrDefault(buttons, defaultButton);
    } else {
        QMessageBox box(icon, title, text, buttons, parent);
        if (defaultButton != QMessageBox::NoButton)
            box.setDefaultButton(defaultButton);
        answer = static_cast<Button>(box.exec());
    }
    h.history.append({icon, title, text, buttons, defaultButton, answer});
    return answer;
}

void MessageBox::setNextAnswer(Button answer)
{
    hooks().answers.enqueue(answer);
}

void MessageBox::setAutoAnswer(bool on)
{
    hooks().autoAnswer = on;
}

QList<MessageBox::Shown> MessageBox::history()
{
    return hooks().history;
}

void MessageBox::clearHistory()
{
    hooks().history.clear();
}

void MessageBox::reset()
{
    hooks() = MessageBoxHooks{};
}

QString FileDialog::getOpenFileName(QWidget *parent, const QString &title, const QString &directory,
                                    const QString &filter)
{
    fileHooks().history.append(directory);
    fileHooks().filter = filter;
    if (!fileHooks().names.isEmpty())
        return fileHooks().names.dequeue();
    return QFileDialog::getOpenFileName(parent, title, directory, filter, nullptr,
                                        QFileDialog::ReadOnly);
}

QString FileDialog::getSaveFileName(QWidget *parent, const QString &title, const QString &proposed,
                                    const QString &filter)
{
    fileHooks().history.append(proposed);
    fileHooks().filter = filter;
    if (!fileHooks().names.isEmpty())
        return fileHooks().names.dequeue();
    return QFileDialog::getSaveFileName(parent, title, proposed, filter);
}

void FileDialog::setNextFileName(const QString &fileName)
{
    fileHooks().names.enqueue(fileName);
}

QStringList FileDialog::history()
{
    return fileHooks().history;
}

QString FileDialog::lastFilter()
{
    return fileHooks().filter;
}

void FileDialog::reset()
{
    fileHooks() = FileDialogHooks{};
}

} // namespace wr
