#include "shell/ChannelSheetCommand.h"

#include "channels/frmChannel.h"
#include "core/AppState.h"
#include "sheet/SheetPreview.h"

#include <QAction>
#include <QFileInfo>

namespace wr {

ChannelSheetCommand::ChannelSheetCommand(AppState &state, frmChannel &list, SettingsStore &settings)
    : QObject(&list)
    , m_state(state)
    , m_list(list)
    , m_settings(settings)
{
    auto *action = new QAction(&list);
    action->setObjectName(QStringLiteral("mnuChannelSheet"));
    list.addCommand(action, sheet::ChannelSheetCommand);
    connect(action, &QAction::triggered, this, &ChannelSheetCommand::showSheet);
}

void ChannelSheetCommand::showSheet()
{
    MemoryImage image = m_state.image;
    m_list.saveInto(image);
    QList<int> channels = m_list.selectedChannels();
    if (channels.size() < 2)
        channels.clear();
    // A name the program never saved to ("Untitled") is no file.
    const QString dataFile = QFileInfo(m_state.CurrentFileName).isFile() ? m_state.CurrentFileName : QString();
    sheet::showChannelSheet(m_list.window(), image, m_list.language(), dataFile, channels, m_settings);
}

} // namespace wr
