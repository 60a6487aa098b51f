#include "shell/frmAbout.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "shell/AppIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
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
    "It is provided as is, without warranty of any kind. Keep a data file of the radio's "
    "memory before writing to it: a transfer that is interrupted can leave the radio with "
    "part of the new data.\n\n"
    "Only program frequencies, power levels and tones that your radio licence allows. "
    "The user is responsible for operating the radio within the rules that apply where it is used.",
    u"本程序用于读取、编辑并写入 WR-PD6T 手持对讲机的存储数据。\n\n"
    "本程序按“现状”提供，不作任何形式的担保。写入对讲机之前，请先把对讲机的数据保存为数据文件："
    "传输中断可能使对讲机只得到部分新数据。\n\n"
    "请只设置您的无线电执照所允许的频率、功率和亚音。在使用地遵守相关规定是用户的责任。",
    u"本程式用於讀取、編輯並寫入 WR-PD6T 手持對講機的儲存數據。\n\n"
    "本程式按「現狀」提供，不作任何形式的擔保。寫入對講機之前，請先把對講機的數據儲存為數據檔案："
    "傳輸中斷可能使對講機只得到部分新數據。\n\n"
    "請只設定您的無線電執照所允許的頻率、功率和亞音。在使用地遵守相關規定是使用者的責任。"};

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
    text1->setMinimumSize(420, 150);

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
