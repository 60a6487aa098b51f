#pragma once

#include "core/ImageFields.h"
#include "core/Language.h"
#include "core/MemoryImage.h"
#include "sheet/GlyphText.h"

#include <QDateTime>
#include <QList>
#include <QPageLayout>
#include <QPageSize>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <utility>

class QPagedPaintDevice;

namespace wr::sheet {

// The sheet's title, beside the radio's model name.
inline constexpr Text SheetTitle{u"Channel Sheet", u"信道表", u"信道表"};

// What a channel sheet shows: a list of a radio's channels to print, pin on
// a wall or hand to a customer, with the radio's settings beside it. Every
// text is in the interface language, in the words of the program's own
// forms.
struct SheetContent
{
    Language language = English;
    QString fileName; // the data file's name; empty when the memory was never saved
    QDateTime printed;
    int channelsInUse = 0; // in the whole memory
    bool selected = false; // only some channels were asked for
    // The channels listed, in order: the number, then the cells of the
    // channel list under its column captions.
    QList<QStringList> channels;
    QList<FieldLine> options; // the optional features, side key included
    QList<FieldLine> keys;    // the programmable keys
    QList<std::pair<int, QString>> fmChannels; // the FM radio's channels set: number, MHz
};

// The content for the channels in use of an image, or for those of
// `channels` (numbers 1-128) that are in use.
SheetContent sheetContent(const MemoryImage &image, Language language, const QString &fileName,
                          const QDateTime &printed, const QList<int> &channels = {});

// The paper of the user's locale: the first of LC_PAPER, LC_ALL and LANG
// that is set names it (Letter in the United States and Canada, A4
// elsewhere); without any, the system's locale does.
QPageSize::PageSizeId localePaper(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());

// A sheet's page: the paper upright, with margins of 15 mm.
QPageLayout sheetPageLayout(QPageSize::PageSizeId paper);

// Paints the sheet on the device's pages as its page layout has them.
// Returns the faces drawn with, for repairTextMaps(); nothing when the
// device could not be painted on.
QList<DrawnFont> printSheet(const SheetContent &content, QPagedPaintDevice &device);

// The sheet as a PDF (fonts embedded, text maps repaired); empty when it
// could not be drawn.
QByteArray sheetPdf(const SheetContent &content, const QPageLayout &page);

} // namespace wr::sheet
