#include "shell/frmAbout.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "shell/AppIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// %1 is the version.
constexpr Text ProductLines{u"WR-PD6T PROGRAM SOFTWARE\nVERSION：VER %1\nDATE: 05/25/2018",
                             u"WR-PD6T 对讲机编程软件\n版本：VER %1\n日期：2018年05月25日",
                             u"WR-PD6T 對講機編程軟件\n版本：VER %1\n日期：2018年05月25日"};

constexpr Text LegalNotice{
    u"This program reads, edits and writes the memory of the WR-PD6T hand-held radio.\n\n"
    "Keep a data file of the radio's memory before writing to it: a transfer that is "
    "interrupted can leave the radio with part of the new data.\n\n"
    "Only program frequencies, power levels and tones that your radio licence allows. "
    "The user is responsible for operating the radio within the rules that apply where it is used.\n\n"
    "Copyright 2026 WR-PD6T developers. This is free software: you may share it and change it "
    "under the GNU General Public License (GPL), version 3 or any later version. It comes with "
    "no warranty of any kind. The licence: https://www.gnu.org/licenses/gpl-3.0.html",
    u"本程序用于读取、编辑并写入 WR-PD6T 手持对讲机的存储数据。\n\n"
    "写入对讲机之前，请先把对讲机的数据保存为数据文件：传输中断可能使对讲机只得到部分新数据。\n\n"
    "请只设置您的无线电执照所允许的频率、功率和亚音。在使用地遵守相关规定是用户的责任。\n\n"
    "版权所有 2026 WR-PD6T 开发者。本程序是自由软件：您可以按照 GNU 通用公共许可证（GPL）"
    "第 3 版或任何更高版本分享和修改它。本程序不提供任何形式的担保。"
    "许可证全文：https://www.gnu.org/licenses/gpl-3.0.html",
    u"本程式用於讀取、編輯並寫入 WR-PD6T 手持對講機的儲存數據。\n\n"
    "寫入對講機之前，請先把對講機的數據儲存為數據檔案：傳輸中斷可能使對講機只得到部分新數據。\n\n"
    "請只設定您的無線電執照所允許的頻率、功率和亞音。在使用地遵守相關規定是使用者的責任。\n\n"
    "版權所有 2026 WR-PD6T 開發者。本程式是自由軟體：您可以依照 GNU 通用公共授權條款（GPL）"
    "第 3 版或任何更新的版本分享和修改它。本程式不提供任何形式的擔保。"
    "授權條款全文：https://www.gnu.org/licenses/gpl-3.0.html"};

constexpr Caption Captions[]{
    {u"frmAbout", {u"WR-PD6T RADIO PROGRAMMING SOFTWARE", u"WR-PD6T  对讲机编程软件", u"WR-PD6T  對講機編程軟件 "}},
    {u"Command1", {u"&OK", u"确定(&O)", u"確定(&O)"}},
};
// The notice has no label; a screen reader says this before reading it.
constexpr Caption SpokenNames[]{{u"Text1", {u"Notice", u"声明", u"聲明"}}};
constexpr FieldTable Texts{.captions = Captions, .spokenNames = SpokenNames};

} // namespace

frmAbout::frmAbout(Language language, QWidget *parent)
    : FormDialog(language, parent)
{
    setObjectName(u"frmAbout"_s);
    setWindowIcon(AppIcon());
    auto *image1 = makeControl<QLabel>(u"Image1"_s);
    image1->setPixmap(AppIcon().pixmap(64, 64));
    image1->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    auto *label1 = makeControl<QLabel>(u"Label1"_s);
    label1->setText(ProductLines.in(language).arg(ProgramVersion()));
    label1->setTextInteractionFlags(Qt::NoTextInteraction);
    QFont heading = label1->font();
    heading.setBold(true);
    label1->setFont(heading);
    auto *text1 = makeControl<QPlainTextEdit>(u"Text1"_s);
    text1->setPlainText(LegalNotice.in(language));
    text1->setReadOnly(true);
    // Wide enough for the lines to read well and tall enough for the whole
    // notice, licence included, without scrolling, in any language's font.
    constexpr int TextWidth = 440;
    const int margins = 2 * (qRound(text1->document()->documentMargin()) + text1->frameWidth());
    const QRect notice = text1->fontMetrics().boundingRect(QRect(0, 0, TextWidth, 10'000), Qt::TextWordWrap,
                                                           text1->toPlainText());
    text1->setMinimumSize(TextWidth + margins, notice.height() + text1->fontMetrics().lineSpacing() + margins);

    auto *top = new QHBoxLayout;
    top->addWidget(image1);
    top->addSpacing(12);
    top->addWidget(label1, 1);
    auto *content = new QVBoxLayout;
    content->addLayout(top);
    content->addWidget(text1);
    layOutWithButtons(content, u"Command1"_s, {}, 0);
    // The notice may be read in a larger window.
    layout()->setSizeConstraint(QLayout::SetDefaultConstraint);
    caption(Texts);
}

} // namespace wr
