#pragma once

#include <QObject>

#include <memory>

class QAction;
class QMenu;
class QWidget;

namespace wr {

struct AppState;
class ChannelModel;
class ChannelToolHost;
class SettingsStore;

// "Channel Sheet…" in the channel list's menu (mnuChannelSheet): the print
// preview of a channel sheet, to print or save as a PDF file. It lists the
// selected channels when two or more rows are selected (a right click
// selects the one row under the pointer), else every channel in use, as the
// list holds them: the working copy is saved into a copy of the image, so
// unsaved edits print and the image itself stays as it was.
class ChannelSheetCommand : public QObject
{
    Q_OBJECT

public:
    // Adds the command to the end of `menu`; the preview is owned by grid's
    // window.
    ChannelSheetCommand(AppState &state, const ChannelModel &model, ChannelToolHost &host, QMenu &menu,
                        QWidget *grid);
    ~ChannelSheetCommand() override;

    // Where the preview keeps the paper chosen; the machine's own settings
    // store until this is given one.
    void setSettingsStore(SettingsStore *settings);

    void showSheet();

private:
    AppState &m_state;
    const ChannelModel &m_model;
    ChannelToolHost &m_host;
    QWidget *m_grid;
    QAction *m_action;
    SettingsStore *m_settings = nullptr;
    std::unique_ptr<SettingsStore> m_ownSettings;
};

} // namespace wr
