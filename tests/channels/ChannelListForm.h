#pragma once

#include "channels/frmChannel.h"
#include "core/AppState.h"

#include <QTableView>
#include <QTest>

#include <memory>

namespace wr::test {

// The channel list on its own, as a user meets it: shown, active, the grid
// focused. Null when the window never became active.
inline std::unique_ptr<frmChannel> openChannelList()
{
    auto form = std::make_unique<frmChannel>(app());
    form->show();
    form->activateWindow();
    if (!QTest::qWaitForWindowActive(form.get()))
        return nullptr;
    form->grid()->setFocus();
    return form;
}

} // namespace wr::test
