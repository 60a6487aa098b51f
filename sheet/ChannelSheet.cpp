#include "sheet/ChannelSheet.h"

#include "channels/ChannelRecord.h"
#include "features/FmRadio.h"
#include "features/KeyFields.h"
#include "features/OptionFields.h"
#include "sheet/PdfTextMap.h"
#include "sheet/SheetLayout.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

namespace wr::sheet {

namespace {

// The faces of a language. Chinese takes the matching face of a CJK font
// (its Latin letters and digits sit well beside the characters); English
// takes the Simplified Chinese face too, so a Chinese file name prints
// without a second font.
QStringList families(Language language)
{
    if (language == TraditionalChinese)
        return {u"Noto Sans CJK TC"_s, u"Source Han Sans TC"_s, u"Microsoft JhengHei"_s, u"PingFang TC"_s};
    return {u"Noto Sans CJK SC"_s, u"Source Han Sans SC"_s, u"Microsoft YaHei"_s, u"PingFang SC"_s};
}

// The territory of a locale name such as "en_US.UTF-8" or "fr_CA@euro".
QStringView territory(QStringView locale)
{
    const qsizetype separator = locale.indexOf(u'_');
    if (separator < 0)
        return {};
    QStringView rest = locale.sliced(separator + 1);
    for (const QChar end : {u'.', u'@'}) {
        if (const qsizetype at = rest.indexOf(end); at >= 0)
            rest = rest.first(at);
    }
    return rest;
}

} // namespace

SheetContent sheetContent(const MemoryImage &image, Language language, const QString &fileName,
                          const QDateTime &printed, const QList<int> &channels)
{
    SheetContent content;
    content.language = language;
    content.fileName = fileName;
    content.printed = printed;
    content.selected = !channels.isEmpty();
    content.channelsInUse = ChannelsInUse(image);
    for (int channel = 1; channel <= ChannelRecord::ChannelCount; ++channel) {
        if (content.selected && !channels.contains(channel))
            continue;
        if (const ChannelTexts texts = ReadChannelTexts(image, channel, language); !texts.isEmpty())
            content.channels.append(QStringList{QString::number(channel)} + texts.cells());
    }
    content.options = describeOptions(image, language);
    content.keys = describeKeys(image, language);
    const fm::Texts fmTexts = fm::load(image);
    for (int channel = 0; channel < fm::ChannelCount; ++channel) {
        if (const QString &frequency = fmTexts.channels[std::size_t(channel)]; !frequency.isEmpty())
            content.fmChannels.append({channel, frequency});
    }
    return content;
}

QPageSize::PageSizeId localePaper(const QProcessEnvironment &environment)
{
    QLocale::Territory where = QLocale::system().territory();
    for (const QString &name : {u"LC_PAPER"_s, u"LC_ALL"_s, u"LANG"_s}) {
        const QString locale = environment.value(name);
        if (locale.isEmpty())
            continue;
        where = QLocale::codeToTerritory(territory(locale));
        break;
    }
    return where == QLocale::UnitedStates || where == QLocale::Canada ? QPageSize::Letter : QPageSize::A4;
}

QPageLayout sheetPageLayout(QPageSize::PageSizeId paper)
{
    return QPageLayout(QPageSize(paper), QPageLayout::Portrait, QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
}

QList<DrawnFont> printSheet(const SheetContent &content, QPagedPaintDevice &device)
{
    GlyphText text(families(content.language));
    const SheetLayout layout(content, text, device.pageLayout().paintRect(QPageLayout::Point).size());
    QPainter painter;
    if (!painter.begin(&device))
        return {};
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(device.logicalDpiX() / 72.0, device.logicalDpiY() / 72.0);
    for (int page = 0; page < layout.pageCount(); ++page) {
        if (page > 0 && !device.newPage())
            return {};
        layout.paint(painter, page);
    }
    if (!painter.end())
        return {};
    return text.drawnFonts();
}

QByteArray sheetPdf(const SheetContent &content, const QPageLayout &page)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setPageLayout(page);
    writer.setCreator(QCoreApplication::applicationName());
    writer.setTitle(content.fileName.isEmpty() ? ModelName() : ModelName() + u' ' + content.fileName);
    const QList<DrawnFont> fonts = printSheet(content, writer);
    if (fonts.isEmpty())
        return {};
    return repairTextMaps(buffer.data(), fonts);
}

} // namespace wr::sheet
