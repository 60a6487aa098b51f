#pragma once

#include "core/Language.h"

#include <QList>
#include <QObject>

#include <optional>

class QLabel;
class QStatusBar;
class QTimer;

namespace wr {

// The main window's status bar MSBar and its five panels MSBar_Panel1-5:
// the port ("COM1"), the date in the interface language's short format, the
// clock ("hh:mm:ss", rewritten by the timer Time every second), an empty
// panel that takes the spare width, and the version ("Version 1.03"). A
// note (a typed value the channel list corrected, the backups kept from the
// last run) takes their place for a while.
class StatusPanels : public QObject
{
    Q_OBJECT

public:
    // Fills `bar`, which owns the panels and this object, and starts the clock.
    explicit StatusPanels(QStatusBar *bar);

    void showPort(quint8 portNumber);
    // The date in the language's format, and the version.
    void showLanguage(Language language);
    // A note in place of the panels for a while (MSBar_Note), which a
    // screen reader speaks as it appears; the panels come back after it. A
    // new note replaces one still shown and starts its time again. A note
    // given in the three languages follows a language switch.
    void showNote(const Text &note, int milliseconds);
    void showNote(const QString &text, int milliseconds);

private:
    enum Panel { PortPanel, DatePanel, ClockPanel, EmptyPanel, VersionPanel, PanelCount };

    void Time_Timer();
    void showDate();
    void endNote();

    QList<QLabel *> m_panels;
    QTimer *m_time;
    QLabel *m_note;
    QTimer *m_noteTime; // tmrNote: how long the note stays
    std::optional<Text> m_noteText; // the note, when it has three languages
    Language m_language = English;
};

} // namespace wr
