#include "link/DoctorTexts.h"

#include "core/Language.h"
#include "link/PortProblem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace wr {

namespace {

using Cause = Diagnosis::Cause;

// What was found.
constexpr Text FoundOk{u"The radio on %1 answered and identified itself as a WR-PD6T. Nothing in the radio was "
                       u"changed.",
    u"%1 上的对讲机已应答，并确认为 WR-PD6T。对讲机中的数据没有任何改动。",
    u"%1 上的對講機已應答，並確認為 WR-PD6T。對講機中的數據沒有任何改動。"};
constexpr Text FoundNoDevice{u"There is no %1 now.", u"当前没有 %1。", u"目前沒有 %1。"};
constexpr Text FoundPresent{u"Serial ports present: %1.", u"现有串口：%1。", u"現有串口：%1。"};
constexpr Text FoundNonePresent{u"No serial port is present.", u"没有任何串口。", u"沒有任何串口。"};
constexpr Text FoundAppeared{u"While the test waited, %1 appeared.", u"测试等待期间出现了 %1。",
                             u"測試等待期間出現了 %1。"};
constexpr Text FoundPermission{u"%1 belongs to the group \u201C%2\u201D, and this user (%3) may not open it.",
    u"%1 属于用户组\u201C%2\u201D，当前用户（%3）无权打开。",
    u"%1 屬於群組「%2」，目前的使用者（%3）無權開啟。"};
constexpr Text FoundHeld{u"%1 is in use by %2.", u"%1 正被 %2 占用。", u"%1 正被 %2 佔用。"};
constexpr Text FoundHidden{u"%1 is in use by a program of another user, which this user cannot see.",
    u"%1 正被其他用户的程序占用，当前用户无法查看是哪个程序。",
    u"%1 正被其他使用者的程式佔用，目前的使用者無法查看是哪個程式。"};
constexpr Text FoundRunning{u"%1 is running.", u"%1 正在运行。", u"%1 正在執行。"};
constexpr Text FoundModemManager{u"ModemManager (PID %1) has %2 open: it probes new serial devices for modems and "
                                 u"keeps the radio from hearing this program.",
    u"ModemManager（PID %1）打开了 %2：它会探测新接入的串口设备是否为调制解调器，使对讲机收不到本程序的命令。",
    u"ModemManager（PID %1）開啟了 %2：它會探測新接入的串口裝置是否為數據機，使對講機收不到本程式的命令。"};
constexpr Text FoundBrltty{u"brltty (PID %1), the braille display service, has taken %2: it claims some USB-serial "
                           u"chips that braille displays use too.",
    u"盲文显示服务 brltty（PID %1）占用了 %2：它会接管部分与盲文显示器相同的 USB 串口芯片。",
    u"點字顯示服務 brltty（PID %1）佔用了 %2：它會接管部分與點字顯示器相同的 USB 串口晶片。"};
constexpr Text FoundNotSerial{u"%1 (%2) is not a serial device.", u"%1（%2）不是串口设备。",
                              u"%1（%2）不是串口裝置。"};
constexpr Text FoundEcho{u"Everything sent to %1 comes straight back, and nothing else answers: the cable is there, "
                         u"the radio does not answer.",
    u"发送到 %1 的数据原样返回，除此之外没有任何应答：写频线已连接，但对讲机没有应答。",
    u"傳送到 %1 的數據原樣返回，除此之外沒有任何應答：寫頻線已連接，但對講機沒有應答。"};
constexpr Text FoundNoAnswer{u"Nothing comes back on %1.", u"%1 上没有任何应答。", u"%1 上沒有任何應答。"};
constexpr Text FoundWrongRadio{u"Something on %1 answers the identification with other bytes: \u201C%2\u201D (%3).",
    u"%1 上的设备对识别请求回应了其他字节：\u201C%2\u201D（%3）。",
    u"%1 上的裝置對識別請求回應了其他位元組：「%2」（%3）。"};
constexpr Text FoundGarbled{u"Bytes come back on %1, but no valid reply: \u201C%2\u201D (%3).",
    u"%1 上有字节返回，但不是有效的应答：\u201C%2\u201D（%3）。",
    u"%1 上有位元組返回，但不是有效的應答：「%2」（%3）。"};
constexpr Text FoundSilentIdentity{u"The radio on %1 acknowledged the opening command but never identified itself.",
    u"%1 上的对讲机确认了联机命令，但没有回应识别请求。",
    u"%1 上的對講機確認了聯機命令，但沒有回應識別請求。"};

// What to do.
constexpr Text DoOk{u"Nothing to do: Read and Write can use this port.", u"无需处理：读取和写入可以使用此端口。",
                    u"無需處理：讀取和寫入可以使用此端口。"};
constexpr Text DoChooseAppeared{u"That is most likely the cable: choose %1 and run the test again.",
    u"那很可能就是写频线：请选择 %1，然后重新测试。",
    u"那很可能就是寫頻線：請選擇 %1，然後重新測試。"};
constexpr Text DoPlugIn{u"Plug the programming cable in, or choose one of the ports present, then run the test "
                        u"again.",
    u"请插好写频线，或选择现有的某个端口，然后重新测试。",
    u"請插好寫頻線，或選擇現有的某個端口，然後重新測試。"};
constexpr Text DoLogInAgain{u"You are already in the group \u201C%1\u201D, but this session started before you were "
                            u"added: log out and log in again.",
    u"您已在用户组\u201C%1\u201D中，但当前会话是在加入之前开始的：请注销并重新登录。",
    u"您已在群組「%1」中，但目前的工作階段是在加入之前開始的：請登出並重新登入。"};
constexpr Text DoJoinGroup{u"Add yourself to the group \u201C%1\u201D, then log out and log in again: sudo usermod -aG "
                           u"%1 %2",
    u"请将自己加入用户组\u201C%1\u201D，然后注销并重新登录：sudo usermod -aG %1 %2",
    u"請將自己加入群組「%1」，然後登出並重新登入：sudo usermod -aG %1 %2"};
constexpr Text DoRuleForGroup{u"Give the cable to the group \u201Cdialout\u201D with the udev rule %1, and be in that "
                              u"group (sudo usermod -aG dialout %2, then log in again); then plug the cable in again.",
    u"请用 udev 规则 %1 将写频线交给用户组\u201Cdialout\u201D，并确保您在该组中（sudo usermod -aG dialout %2，然后重新"
    u"登录）；然后重新插入写频线。",
    u"請用 udev 規則 %1 將寫頻線交給群組「dialout」，並確保您在該群組中（sudo usermod -aG dialout %2，然後重新登入）；"
    u"然後重新插入寫頻線。"};
constexpr Text DoCloseHolder{u"Close that program, then run the test again.", u"请关闭该程序，然后重新测试。",
                             u"請關閉該程式，然後重新測試。"};
constexpr Text DoAskOtherUser{u"Ask whoever uses the port to close it, or restart the computer.",
    u"请让正在使用此端口的人关闭它，或重新启动计算机。",
    u"請讓正在使用此端口的人關閉它，或重新啟動電腦。"};
constexpr Text DoRuleForModemManager{u"Install the udev rule %1, which tells ModemManager to leave programming cables "
                                     u"alone; then unplug the cable and plug it in again.",
    u"请安装 udev 规则 %1，它会让 ModemManager 不再探测写频线；然后拔下写频线再重新插入。",
    u"請安裝 udev 規則 %1，它會讓 ModemManager 不再探測寫頻線；然後拔下寫頻線再重新插入。"};
constexpr Text DoSpareBrltty{u"Keep brltty, and stop it claiming this cable: copy its rules file "
                             u"(/usr/lib/udev/rules.d/*brltty*.rules) to /etc/udev/rules.d/, put a # before the line "
                             u"of this cable's chip%1, run sudo udevadm control --reload, then unplug the cable and "
                             u"plug it in again.",
    u"请保留 brltty，只让它不再接管此写频线：将其规则文件（/usr/lib/udev/rules.d/*brltty*.rules）复制到 "
    u"/etc/udev/rules.d/，在此写频线芯片%1所在的那一行前加上 #，运行 sudo udevadm control --reload，然后拔下写频线再"
    u"重新插入。",
    u"請保留 brltty，只讓它不再接管此寫頻線：將其規則檔（/usr/lib/udev/rules.d/*brltty*.rules）複製到 "
    u"/etc/udev/rules.d/，在此寫頻線晶片%1所在的那一行前加上 #，執行 sudo udevadm control --reload，然後拔下寫頻線再"
    u"重新插入。"};
constexpr Text UsbId{u" (USB id %1)", u"（USB ID %1）", u"（USB ID %1）"};
constexpr Text DoOtherPort{u"Choose the port of the programming cable instead.", u"请改为选择写频线所在的端口。",
                           u"請改為選擇寫頻線所在的端口。"};
constexpr Text DoRadioOn{u"Switch the radio on and push the cable's plug firmly into the radio's socket, then run the "
                         u"test again.",
    u"请打开对讲机，并将写频线插头用力插到底，然后重新测试。",
    u"請打開對講機，並將寫頻線插頭用力插到底，然後重新測試。"};
constexpr Text DoCheckPlug{u"Push the cable's plug fully into the radio's socket (the two-pin plugs need a firm push), "
                           u"switch the radio on, and check that this is the cable's port; then run the test again.",
    u"请将写频线插头完全插入对讲机插孔（双针插头需要用力插到底），打开对讲机，并确认这是写频线的端口；然后重新测试。",
    u"請將寫頻線插頭完全插入對講機插孔（雙針插頭需要用力插到底），打開對講機，並確認這是寫頻線的端口；然後重新測試。"};
constexpr Text DoWrongRadio{u"This program serves the WR-PD6T only: connect a WR-PD6T.",
    u"本程序只适用于 WR-PD6T：请连接 WR-PD6T 对讲机。",
    u"本程式只適用於 WR-PD6T：請連接 WR-PD6T 對講機。"};
constexpr Text DoCheckCable{u"A wrong line speed or a noisy cable garbles the replies: try another cable or another "
                            u"USB socket.",
    u"线路速率不对或写频线有干扰会使应答出错：请换一条写频线或另一个 USB 插口试试。",
    u"線路速率不對或寫頻線有干擾會使應答出錯：請換一條寫頻線或另一個 USB 插口試試。"};

// While it runs.
constexpr Text Waiting{u"No device for %1 yet: plug the cable in now (%2 s)\u2026",
    u"%1 尚无设备：请现在插入写频线（%2 秒）\u2026",
    u"%1 尚無裝置：請現在插入寫頻線（%2 秒）\u2026"};
constexpr Text Asking{u"Asking the radio on %1\u2026", u"正在询问 %1 上的对讲机\u2026", u"正在詢問 %1 上的對講機\u2026"};

// Between two sentences: a space in English, nothing after a Chinese full stop.
QString gap(int language)
{
    return language == English ? QStringLiteral(" ") : QString();
}

QString hex(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QString holderNames(const QList<PortHolder> &holders, int language)
{
    QStringList names;
    for (const PortHolder &holder : holders)
        names.append(QStringLiteral("%1 (PID %2)").arg(holder.name).arg(holder.pid));
    return names.join(listSeparator(language));
}

qint64 firstPid(const QList<PortHolder> &holders, QStringView name)
{
    for (const PortHolder &holder : holders) {
        if (holder.name.startsWith(name))
            return holder.pid;
    }
    return 0;
}

// The rule as the advice names it: with the commands that put this
// installation's copy in place, or where the system already has it.
QString ruleReference()
{
    const QString installed = installedUdevRule();
    if (installed.isEmpty())
        return udevRuleName();
    const QString folder = QFileInfo(installed).path();
    if (folder == u"/usr/lib/udev/rules.d" || folder == u"/lib/udev/rules.d")
        return QStringLiteral("%1 (%2)").arg(udevRuleName(), folder);
    return QStringLiteral("%1 (sudo cp %2 /etc/udev/rules.d/ && sudo udevadm control --reload)")
        .arg(udevRuleName(), installed);
}

QString permissionAdvice(const DeviceFacts &facts, int language)
{
    const QString user = currentUserName();
    if (facts.serialGroup && facts.userListed && !facts.processHasGroup)
        return DoLogInAgain.in(language).arg(facts.group);
    if (facts.serialGroup && !facts.userListed)
        return DoJoinGroup.in(language).arg(facts.group, user);
    // The device's group is none a user should join (root, tty, disk...),
    // or the group is not enough: a rule gives the cable to dialout.
    return DoRuleForGroup.in(language).arg(ruleReference(), user);
}

QString brlttyAdvice(const Diagnosis &d, int language)
{
    return DoSpareBrltty.in(language).arg(d.usbId.isEmpty() ? QString() : UsbId.in(language).arg(d.usbId));
}

QString busyAdvice(const Diagnosis &d, int language)
{
    if (!d.holders.holders.isEmpty())
        return DoCloseHolder.in(language);
    QString advice = DoAskOtherUser.in(language);
    for (const QString &name : d.holders.running) {
        advice += gap(language)
            + (name == u"ModemManager" ? DoRuleForModemManager.in(language).arg(ruleReference())
                                       : brlttyAdvice(d, language));
    }
    return advice;
}

} // namespace

QString diagnosisDetail(const Diagnosis &d, int language)
{
    const QString port = comName(d.port);
    const QString label = portLabel(d.port, d.device == port ? QString() : d.device);
    switch (d.cause) {
    case Cause::Ok:
        return FoundOk.in(language).arg(label);
    case Cause::NoDevice: {
        QStringList present;
        for (const PortEntry &entry : d.present)
            present.append(portLabel(entry.number(), entry.devicePath == entry.name ? QString() : entry.devicePath));
        QString text = FoundNoDevice.in(language).arg(port) + gap(language)
            + (present.isEmpty() ? FoundNonePresent.in(language)
                                 : FoundPresent.in(language).arg(present.join(listSeparator(language))));
        if (d.appeared)
            text += gap(language) + FoundAppeared.in(language).arg(portLabel(d.appeared->number(), d.appeared->devicePath));
        return text;
    }
    case Cause::Permission:
        return FoundPermission.in(language).arg(d.device, d.facts.group, currentUserName());
    case Cause::Busy: {
        if (!d.holders.holders.isEmpty())
            return FoundHeld.in(language).arg(d.device, holderNames(d.holders.holders, language));
        QString text = FoundHidden.in(language).arg(d.device);
        for (const QString &name : d.holders.running)
            text += gap(language) + FoundRunning.in(language).arg(name);
        return text;
    }
    case Cause::HeldByModemManager:
        return FoundModemManager.in(language).arg(firstPid(d.holders.holders, u"ModemManager")).arg(d.device);
    case Cause::HeldByBrltty:
        return FoundBrltty.in(language).arg(firstPid(d.holders.holders, u"brltty")).arg(d.device);
    case Cause::NotSerial:
        return FoundNotSerial.in(language).arg(port, d.device);
    case Cause::EchoOnly:
        return FoundEcho.in(language).arg(label);
    case Cause::NoAnswer:
        return FoundNoAnswer.in(language).arg(label);
    case Cause::WrongRadio:
        return FoundWrongRadio.in(language).arg(label, printableBytes(d.answer), hex(d.answer));
    case Cause::Garbled:
        if (d.answer.isEmpty())
            return FoundSilentIdentity.in(language).arg(label);
        return FoundGarbled.in(language).arg(label, printableBytes(d.answer), hex(d.answer));
    }
    return {};
}

QString diagnosisAdvice(const Diagnosis &d, int language)
{
    switch (d.cause) {
    case Cause::Ok:
        return DoOk.in(language);
    case Cause::NoDevice:
        return d.appeared ? DoChooseAppeared.in(language).arg(d.appeared->name) : DoPlugIn.in(language);
    case Cause::Permission:
        return permissionAdvice(d.facts, language);
    case Cause::Busy:
        return busyAdvice(d, language);
    case Cause::HeldByModemManager:
        return DoRuleForModemManager.in(language).arg(ruleReference());
    case Cause::HeldByBrltty:
        return brlttyAdvice(d, language);
    case Cause::NotSerial:
        return DoOtherPort.in(language);
    case Cause::EchoOnly:
        return DoRadioOn.in(language);
    case Cause::NoAnswer:
        return DoCheckPlug.in(language);
    case Cause::WrongRadio:
        return DoWrongRadio.in(language);
    case Cause::Garbled:
        return DoCheckCable.in(language);
    }
    return {};
}

QString doctorWaitingText(int port, int msLeft, int language)
{
    return Waiting.in(language).arg(comName(port)).arg((msLeft + 999) / 1000);
}

QString doctorAskingText(int port, int language)
{
    return Asking.in(language).arg(comName(port));
}

QString udevRuleName()
{
    return QStringLiteral("70-wrpd6t-cable.rules");
}

QString installedUdevRule()
{
    // bin/ and lib/ side by side under the install prefix.
    const QString path = QDir::cleanPath(QCoreApplication::applicationDirPath()
                                         + QStringLiteral("/../lib/udev/rules.d/") + udevRuleName());
    return QFileInfo::exists(path) ? path : QString();
}

} // namespace wr
