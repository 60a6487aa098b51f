#include "channels/CsvImportPreview.h"

#include "channels/ChannelCsv.h"

#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextDocument>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr Text SourceText{u"File: %1", u"文件：%1", u"檔案：%1"};
constexpr Text ImportedText{u"Rows to import: %1 (changed: %2)", u"将导入的行：%1（有改动：%2）",
                            u"將匯入的列：%1（有變動：%2）"};
constexpr Text SkippedText{u"Rows skipped: %1", u"跳过的行：%1", u"略過的列：%1"};
constexpr Text ReplacedText{u"Channels in use that will be replaced: %1", u"将被替换的已用信道：%1",
                            u"將被取代的已用信道：%1"};
constexpr Text ReportCaption{u"Rows changed or skipped:", u"改动或跳过的行：", u"變動或略過的列："};
constexpr Text ReportHeader{u"Line\tColumn\tValue\tWhat happens", u"行号\t列\t值\t处理", u"行號\t欄\t值\t處理"};
constexpr Text NothingText{u"No row can be imported.", u"没有可以导入的行。", u"沒有可以匯入的列。"};
constexpr Text TargetsText{u"Where the rows go: %1", u"各行的去向：%1", u"各列的去向：%1"};
constexpr Text RowTarget{u"line %1 → channel %2", u"第 %1 行 → 信道 %2", u"第 %1 列 → 信道 %2"};
constexpr Text RowsTarget{u"lines %1-%2 → channels %3-%4", u"第 %1-%2 行 → 信道 %3-%4", u"第 %1-%2 列 → 信道 %3-%4"};
constexpr Text TargetSeparator{u"; ", u"；", u"；"};
constexpr Text ReadAsText{u"Read as the columns: %1", u"按以下各列读取：%1", u"按以下各欄讀取：%1"};
constexpr Text CaptionSeparator{u", ", u"、", u"、"};

// Values longer than this do not widen the report's columns.
constexpr int WidestColumnCharacters = 20;

QLabel *addLabel(QVBoxLayout *layout, const QString &name, const QString &text)
{
    auto *label = new QLabel(text);
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(label);
    return label;
}

// Which channel each row goes to, in runs of consecutive lines going to
// consecutive channels: "line 2 → channel 7; lines 3-5 → channels 8-10".
QString rowTargets(const CsvImport &import, Language language)
{
    QList<std::pair<int, int>> rows; // line, channel
    for (const auto &[channel, values] : import.channels)
        rows.append({values.line, channel});
    std::sort(rows.begin(), rows.end());
    QStringList runs;
    for (qsizetype i = 0; i < rows.size();) {
        qsizetype end = i;
        while (end + 1 < rows.size() && rows[end + 1].first == rows[end].first + 1
               && rows[end + 1].second == rows[end].second + 1)
            ++end;
        runs << (end == i ? RowTarget.in(language).arg(rows[i].first).arg(rows[i].second)
                          : RowsTarget.in(language)
                                .arg(rows[i].first)
                                .arg(rows[end].first)
                                .arg(rows[i].second)
                                .arg(rows[end].second));
        i = end + 1;
    }
    return runs.join(TargetSeparator.in(language));
}

} // namespace

QString channelRanges(const QList<int> &channels)
{
    QStringList ranges;
    for (qsizetype i = 0; i < channels.size();) {
        qsizetype end = i;
        while (end + 1 < channels.size() && channels[end + 1] == channels[end] + 1)
            ++end;
        ranges << (end == i ? QString::number(channels[i]) : u"%1-%2"_s.arg(channels[i]).arg(channels[end]));
        i = end + 1;
    }
    return ranges.join(u", ");
}

CsvImportPreview::CsvImportPreview(const CsvImport &import, const QList<int> &replaced, const QString &source,
                                   const Text &title, Language language, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(u"CsvImportPreview"_s);
    setWindowTitle(dialogTitle(title, language));

    auto *layout = new QVBoxLayout(this);
    if (!source.isEmpty())
        addLabel(layout, u"lblSource"_s, SourceText.in(language).arg(source));
    addLabel(layout, u"lblImported"_s,
             ImportedText.in(language).arg(QString::number(import.imported), QString::number(import.changed)));
    addLabel(layout, u"lblSkipped"_s, SkippedText.in(language).arg(import.skipped));
    addLabel(layout, u"lblReplaced"_s,
             ReplacedText.in(language).arg(replaced.isEmpty() ? Words::None.in(language) : channelRanges(replaced)));
    if (!import.readAs.isEmpty()) {
        QStringList captions;
        for (int column : import.readAs)
            captions << ChannelColumnCaptions[std::size_t(column)].in(language);
        addLabel(layout, u"lblReadAs"_s, ReadAsText.in(language).arg(captions.join(CaptionSeparator.in(language))));
    }
    if (import.imported == 0)
        addLabel(layout, u"lblNothing"_s, NothingText.in(language));
    else
        addLabel(layout, u"lblTargets"_s, TargetsText.in(language).arg(rowTargets(import, language)));

    QStringList lines{ReportHeader.in(language)};
    int widest = 0;        // of the line, column and value cells
    int widestReason = 0;
    auto *report = new QPlainTextEdit;
    report->setObjectName(u"txtReport"_s);
    const QFontMetrics metrics(report->font());
    const int widthLimit = metrics.averageCharWidth() * WidestColumnCharacters;
    for (const QString &cell : lines.front().split(u'\t').first(3))
        widest = std::max(widest, metrics.horizontalAdvance(cell));
    for (const ImportNote &note : import.notes) {
        const QString value = QString(note.value).replace(u'\n', u' ').replace(u'\t', u' ');
        const QString column = note.columnName(language);
        lines << QStringList{QString::number(note.line), column, value, note.text(language)}.join(u'\t');
        for (const QString &cell : {column, value})
            widest = std::max(widest, std::min(widthLimit, metrics.horizontalAdvance(cell)));
        widestReason = std::max(widestReason, metrics.horizontalAdvance(note.text(language)));
    }
    addLabel(layout, u"lblReport"_s, ReportCaption.in(language));
    report->setReadOnly(true);
    report->setLineWrapMode(QPlainTextEdit::NoWrap);
    const int tabStop = widest + metrics.averageCharWidth() * 2;
    report->setTabStopDistance(tabStop);
    report->setPlainText(lines.join(u'\n'));
    layout->addWidget(report, 1);

    auto *buttons = new QDialogButtonBox;
    QPushButton *ok = buttons->addButton(Words::OK.in(language), QDialogButtonBox::AcceptRole);
    ok->setObjectName(u"cmdOK"_s);
    ok->setEnabled(import.imported > 0);
    QPushButton *cancel = buttons->addButton(Words::Cancel.in(language), QDialogButtonBox::RejectRole);
    cancel->setObjectName(u"cmdCancel"_s);
    (import.imported > 0 ? ok : cancel)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    // As wide as the longest line of the report, within the screen.
    const QMargins margins = layout->contentsMargins();
    const int frame = 2 * report->frameWidth() + report->verticalScrollBar()->sizeHint().width()
        + 2 * int(report->document()->documentMargin()) + metrics.averageCharWidth();
    const int wanted = 3 * tabStop + widestReason + frame + margins.left() + margins.right();
    const QScreen *screen = parent ? parent->screen() : QGuiApplication::primaryScreen();
    const int room = screen ? screen->availableGeometry().width() * 9 / 10 : wanted;
    const int reportLines = std::clamp(int(lines.size()), 8, 20);
    resize(std::clamp(wanted, sizeHint().width(), std::max(room, sizeHint().width())),
           sizeHint().height() + metrics.lineSpacing() * reportLines);
}

} // namespace wr
