#include "channels/ChannelSheetCommand.h"

#include "channels/ChannelModel.h"
#include "channels/ChannelTools.h"
#include "core/AppState.h"
#include "core/SettingsStore.h"
#include "sheet/SheetPreview.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QWidget>

namespace wr {

ChannelSheetCommand::ChannelSheetCommand(AppState &state, const ChannelModel &model, ChannelToolHost &host,
                                         QMenu &menu, QWidget *grid)
    : QObject(grid)
    , m_state(state)
    , m_model(model)
    , m_host(host)
    , m_grid(grid)
    , m_action(new QAction(grid))
{
    m_action->setObjectName(QStringLiteral("mnuChannelSheet"));
    menu.addSeparator();
    menu.addAction(m_action);
    // Captioned as the menu opens, in the language of the list's words.
    connect(&menu, &QMenu::aboutToShow, this,
            [this] { m_action->setText(sheet::ChannelSheetCommand.in(m_model.language())); });
    connect(m_action, &QAction::triggered, this, &ChannelSheetCommand::showSheet);
}

ChannelSheetCommand::~ChannelSheetCommand() = default;

void ChannelSheetCommand::setSettingsStore(SettingsStore *settings)
{
    m_settings = settings;
}

void ChannelSheetCommand::showSheet()
{
    m_host.commitEdit();
    MemoryImage image = m_state.image;
    m_model.table().save(image, m_host.lastChannel());
    QList<int> channels = m_host.selectedChannels();
    if (channels.size() < 2)
        channels.clear();
    // A name the program never saved to ("Untitled") is no file.
    const QString dataFile = QFileInfo(m_state.CurrentFileName).isFile() ? m_state.CurrentFileName : QString();
    if (!m_settings) {
        m_ownSettings = std::make_unique<SettingsStore>();
        m_settings = m_ownSettings.get();
    }
    sheet::showChannelSheet(m_grid->window(), image, m_model.language(), dataFile, channels, *m_settings);
}

} // namespace wr
