#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QList>
#include <QString>

class QWidget;

namespace wr {
class SettingsStore;
}

namespace wr::sheet {

// The command that opens the preview, as a menu shows it.
inline constexpr Text ChannelSheetCommand{u"Channel Sheet…", u"信道表…", u"信道表…"};

// Shows the print preview of a channel sheet (frmChannelSheet) of the
// channels of `image` in use, or of those of `channels`, and returns when it
// closes. Its tool bar prints (on paper, or to a file through the print
// dialog) and saves the sheet as a PDF file ("Save as PDF…",
// actSaveSheetPdf, Ctrl+S). The paper is the one the preview had when it last
// closed, kept in `settings`; at first the locale's. dataFile: the path of
// the data file the memory came from, empty when it was never saved.
void showChannelSheet(QWidget *parent, const MemoryImage &image, Language language, const QString &dataFile,
                      const QList<int> &channels, SettingsStore &settings);

} // namespace wr::sheet
