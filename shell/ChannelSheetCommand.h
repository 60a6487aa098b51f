#pragma once

#include <QObject>

class QAction;

namespace wr {

struct AppState;
class SettingsStore;
class frmChannel;

// "Channel Sheet…" in the channel list's menu (mnuChannelSheet): the print
// preview of a channel sheet, to print or save as a PDF file. It lists the
// selected channels when two or more rows are selected (a right click
// selects the one row under the pointer), else every channel in use, as the
// list holds them: the working copy is saved into a copy of the image, so
// unsaved edits print and the image itself stays as it was. The preview
// keeps the paper chosen in `settings`.
class ChannelSheetCommand : public QObject
{
    Q_OBJECT

public:
    // Added to the end of the list's menu; it lives as long as the list.
    ChannelSheetCommand(AppState &state, frmChannel &list, SettingsStore &settings);

    void showSheet();

private:
    AppState &m_state;
    frmChannel &m_list;
    SettingsStore &m_settings;
};

} // namespace wr
