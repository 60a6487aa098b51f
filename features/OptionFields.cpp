#include "features/OptionFields.h"

#include "features/KeyFunctions.h"

namespace wr {

namespace {

// VOX level k (1-9) is stored with its on bit as ((k - 1) << 2) | 1; with
// the on bit clear, or a level beyond 9, VOX is off.
int voxCode(int stored)
{
    const int k = stored >> 2;
    return (stored & 1) && k < 9 ? k + 1 : 0;
}

int voxStored(int code)
{
    return code == 0 ? 0 : ((code - 1) << 2) | 1;
}

// The delay list offers 1-10 half seconds. A delay of 0, which the radio
// never gets from this program, shows no selection, and OK then leaves it
// as it is; anything beyond 10 shows the first entry.
int voxDelayCode(int stored)
{
    return stored == 0 ? ListField::NoSelection : stored;
}

constexpr Choice OffFirst[]{{0, Words::Off}};
constexpr Choice OffOn[]{{0, {u"Off", u"关闭", u"關閉"}}, {1, {u"On", u"开启", u"開啟"}}};
constexpr Choice ScanModes[]{{0, {u"TO", u"时间", u"時間"}}, {1, {u"CO", u"载波", u"載波"}}, {2, {u"SO", u"搜索", u"搜索"}}};
constexpr Choice ContinuousFirst[]{{0, {u"Cont", u"常亮", u"常亮"}}};
constexpr Choice BatteryDisplays[]{{0, {u"Voltage", u"电压", u"電壓"}}, {1, {u"Percentage", u"百分比", u"百分比"}}};

// Lists the dialog fills but never loads or stores: settings of other radios
// of the family, kept out of sight.
constexpr Choice Decoders[]{{0, {u"DTMF"}}, {1, {u"MSK"}}};
constexpr Choice RadioWatch[]{{0, Words::Off}, {1, {u"ON", u"开", u"開"}}};
constexpr Choice SideKeyShort[]{{0, {u"Call"}}, {1, {u"Backlight", u"背光燈", u"背光燈"}}};
constexpr Choice WorkingBands[]{{0, {u"A Frequency", u"A段", u"A段"}}, {1, {u"B Frequency", u"B段", u"B段"}}};
constexpr Choice ChannelDisplays[]{{0, {u"Channel+Frequency", u"频率＋信道号", u"頻率＋信道號"}},
                                   {1, {u"Channel+Name", u"名称＋信道号", u"名稱＋信道號"}},
                                   {2, {u"Channel", u"信道号", u"信道號"}}};

constexpr Caption Captions[]{
    {u"frmOption", {u"Optiom Features(&O)", u"可选功能(&O)", u"可選功能(&O)"}},
    {u"Label10", {u"Squelch Level", u"静噪等级", u"靜噪等級"}},
    {u"Label11", {u"Time Out Timer[s]", u"发射超时定时器[秒]", u"發射超時定時器[秒]"}},
    {u"Label12", {u"VOX Level", u"声控等级", u"聲控等級"}},
    {u"Label13", {u"Delay Time[s]", u"声控延时[秒]", u"聲控延遲[秒]"}},
    {u"Label14", {u"Voice Annunciation", u"操作语音提示", u"操作語音提示"}},
    {u"Label15", {u"Scan Mode", u"扫描方式", u"掃描方式"}},
    {u"Label16", {u"Backlight Time[s]", u"背光灯时间[秒]", u"背光燈時間[秒]"}},
    {u"Label17", {u"Volume Level", u"音量等级", u"音量等級"}},
    {u"Label18", {u"Battery Status", u"电量显示", u"電量顯示"}},
    {u"Label19", {u"SideKey", u"侧键", u"側鍵"}},
    {u"Frame3", KeyWords::KeySetting},
    {u"Label22", KeyWords::LongPress},
    {u"Label23", KeyWords::ShortPress},
    {u"CmdOK", Words::OK},
    {u"CmdCannel", Words::Cancel},
    // Out of sight, texts only.
    {u"Check16", {u"BDR", u"启动双守侯", u"啟動雙守候"}},
    {u"Check17", {u"Radio Enable", u"收音机使能", u"收音機使能"}},
    {u"Label114", {u"No signal decoding choice", u"无信令时解码选择", u"無信令時解碼選擇"}},
    {u"lblRadio3", {u"Radio DW", u"收音机监听", u"收音機監聽"}},
    {u"lblCH0", {u"Receives signal CH Switch", u"接收到信号信道自动切换", u"接收到信號信道自動切換"}},
    {u"lblCH1", {u"Enter BDR Time[s]", u"进入双守候时间[秒]", u"進入雙守候時間[秒]"}},
    {u"Frame2", {u"Key", u"按键定义", u"按鍵定義"}},
    {u"LabKey", {u"Short Key", u"侧键短按", u"側鍵短按"}},
    {u"Frame4", {u"Channel Mode", u"信道模式下", u"信道模式下"}},
    {u"Check2", {u"VFO Mode", u"VFO模式", u"VFO模式"}},
    {u"Label20", {u"Working Frequency", u"工作频段", u"工作頻段"}},
    {u"Label21", {u"Channel Dis.", u"信道显示模式", u"信道顯示模式"}},
};

constexpr ListField Lists[]{
    {.control = u"CobKeyL", .bits = BitField{0x0CEA, 4, 4}, .words = SideLongPressChoices},
    {.control = u"CobKeyS", .bits = BitField{0x0CEA, 0, 4}, .words = SideShortPressChoices},
    {.control = u"Combo16", .bits = BitField{0x0CDD}, .words = ContinuousFirst, .numbers = {.first = 1, .last = 20}},
    {.control = u"Combo18", .bits = BitField{0x0CD2, 3, 1}, .words = BatteryDisplays},
    {.control = u"Combo17", .bits = BitField{0x0CDE}, .numbers = {.first = 0, .last = 7, .plus = 1}},
    {.control = u"Combo10", .bits = BitField{0x0CD6}, .words = OffFirst, .numbers = {.first = 1, .last = 9}},
    {.control = u"Combo11", .bits = BitField{0x0CDA}, .words = OffFirst, .numbers = {.first = 1, .last = 9, .times = 30}},
    {.control = u"Combo12", .bits = BitField{0x0CD7}, .words = OffFirst, .numbers = {.first = 1, .last = 9},
     .codeOf = voxCode, .storedOf = voxStored},
    {.control = u"Combo13", .bits = BitField{0x0CD8}, .numbers = {.first = 1, .last = 10, .times = 5, .decimals = 1},
     .codeOf = voxDelayCode},
    {.control = u"Combo14", .bits = BitField{0x0CD1, 7, 1}, .words = OffOn},
    {.control = u"Combo15", .bits = BitField{0x0CD1, 0, 2}, .words = ScanModes},
    // Out of sight, filled only.
    {.control = u"Combo114", .words = Decoders},
    {.control = u"cboRadio3", .words = RadioWatch},
    {.control = u"cboCH0", .words = OffOn},
    {.control = u"cboCH1", .words = OffFirst, .numbers = {.first = 1, .last = 20}},
    {.control = u"ComKey", .words = SideKeyShort},
    {.control = u"Combo21", .words = WorkingBands},
    {.control = u"Combo20", .words = ChannelDisplays},
};

constexpr CheckField Checks[]{
    {u"Check10", {u"KeyLock", u"键盘锁", u"鍵盤鎖"}, BitField{0x0CD1, 2, 1}},
    {u"Check11", {u"Auto KeyLock", u"自动键盘锁", u"自動鍵盤鎖"}, BitField{0x0CD1, 3, 1}},
    {u"Check12", {u"Beep", u"哗音", u"嘩音"}, BitField{0x0CD1, 6, 1}},
    {u"Check13", {u"Battery Save", u"省电", u"省電"}, BitField{0x0CD1, 4, 1}},
    {u"Check14", {u"Roger Tone", u"发射结束提示音", u"發射結束提示音"}, BitField{0x0CD2, 2, 1}},
    {u"Check15", {u"Tail eliminate", u"尾音消除", u"尾音消除"}, BitField{0x0CD2, 7, 1}},
};

constexpr int Rebuilt[]{0x0CD7, 0x0CEA};

constexpr ReportLine Report[]{
    {u"Combo10", u"Label10"}, {u"Combo11", u"Label11"}, {u"Combo12", u"Label12"},
    {u"Combo13", u"Label13"}, {u"Combo14", u"Label14"}, {u"Combo15", u"Label15"},
    {u"Combo16", u"Label16"}, {u"Combo17", u"Label17"}, {u"Combo18", u"Label18"},
    {u"Check10"}, {u"Check11"}, {u"Check12"}, {u"Check13"}, {u"Check14"}, {u"Check15"},
    {u"CobKeyL", u"Label19", u"Label22"}, {u"CobKeyS", u"Label19", u"Label23"},
};

} // namespace

constexpr FieldTable OptionFields{
    .captions = Captions, .lists = Lists, .checks = Checks, .rebuiltBytes = Rebuilt, .lines = Report};

QList<FieldLine> describeOptions(const MemoryImage &image, int languageIndex)
{
    return describeFields(image, OptionFields, languageIndex);
}

} // namespace wr
