#include "link/PortProblem.h"

#include "core/Language.h"
#include "link/PortCatalogue.h"
#include "link/PortInspection.h"

#include <QFile>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>
#endif

namespace wr {

namespace {

constexpr Text MissingAdvice{u"Check that the programming cable is plugged in and that this is the right port.",
    u"请检查写频线是否插好，以及所选端口是否正确。",
    u"請檢查寫頻線是否插好，以及所選端口是否正確。"};

constexpr Text GroupAdvice{u"This user may not use the port: add the user to the group \u201C%1\u201D, which owns the "
                           u"device, then log out and log in again.",
    u"当前用户无权使用此端口：请将该用户加入拥有此设备的用户组\u201C%1\u201D，然后注销并重新登录。",
    u"目前的使用者無權使用此端口：請將該使用者加入擁有此裝置的群組「%1」，然後登出並重新登入。"};

constexpr Text AccessAdvice{u"This user may not use the port: ask for access to the device, then log out and log in again.",
    u"当前用户无权使用此端口：请申请此设备的使用权限，然后注销并重新登录。",
    u"目前的使用者無權使用此端口：請申請此裝置的使用權限，然後登出並重新登入。"};

constexpr Text BusyAdvice{u"Another program is using the port: close it, then try again.",
    u"另一个程序正在使用此端口：请先关闭该程序，然后重试。",
    u"另一個程式正在使用此端口：請先關閉該程式，然後重試。"};

constexpr Text LostAdvice{u"The port went away during the transfer: check that the cable is still plugged in, then "
                          u"choose Retry.",
    u"传输过程中端口已断开：请检查写频线是否仍然插好，然后选择\u201C重试\u201D。",
    u"傳輸過程中端口已斷開：請檢查寫頻線是否仍然插好，然後選擇「重試」。"};

constexpr Text LostAgainAdvice{u"The port went away during the transfer: check that the cable is still plugged in, "
                               u"then run the command again for this port.",
    u"传输过程中端口已断开：请检查写频线是否仍然插好，然后对此端口重新运行该命令。",
    u"傳輸過程中端口已斷開：請檢查寫頻線是否仍然插好，然後對此端口重新執行該命令。"};

constexpr Text ScanText{u"The radio did not answer on %1, so the automatic port search tried %2.",
    u"对讲机在 %1 上没有应答，因此自动端口搜索尝试了 %2。",
    u"對講機在 %1 上沒有應答，因此自動端口搜尋嘗試了 %2。"};

constexpr Text PortTriedText{u"Port tried: %1",
    u"已尝试的端口：%1",
    u"已嘗試的端口：%1"};

constexpr Text PortsTriedText{u"Ports tried: %1",
    u"已尝试的端口：%1",
    u"已嘗試的端口：%1"};

} // namespace

QString listSeparator(int language)
{
    return language == English ? QStringLiteral(", ") : QStringLiteral("、");
}

QString printableBytes(const QByteArray &bytes)
{
    QString text;
    for (const char byte : bytes)
        text += byte >= 0x20 && byte < 0x7F ? QChar::fromLatin1(byte) : QChar(u'.');
    return text;
}

QString portLabel(int number, const QString &device)
{
    return device.isEmpty() ? comName(number) : QStringLiteral("%1 (%2)").arg(comName(number), device);
}

QString describePortProblem(int number, const PortProblem &problem, int language, Wording wording)
{
    QString text = portLabel(number, problem.device) + QStringLiteral(": ") + problem.systemText;
    switch (problem.kind) {
    case PortProblem::Kind::Missing:
        return text + u'\n' + MissingAdvice.in(language);
    case PortProblem::Kind::NoPermission:
        return text + u'\n'
            // Only a group that is for serial ports is one to join; a device
            // of root, tty or disk is opened up by a udev rule instead.
            + (isSerialGroup(problem.group) ? GroupAdvice.in(language).arg(problem.group) : AccessAdvice.in(language));
    case PortProblem::Kind::Busy:
        return text + u'\n' + BusyAdvice.in(language);
    case PortProblem::Kind::Lost:
        return text + u'\n' + (wording == Wording::Window ? LostAdvice : LostAgainAdvice).in(language);
    case PortProblem::Kind::Other:
        break;
    }
    return text;
}

QString scanNote(int triedNumber, int chosenNumber, int language)
{
    return ScanText.in(language).arg(comName(chosenNumber), comName(triedNumber));
}

QString portsTriedLine(const QList<PortTried> &ports, int language)
{
    QStringList labels;
    for (const PortTried &port : ports)
        labels.append(portLabel(port.number, port.device));
    return (ports.size() == 1 ? PortTriedText : PortsTriedText).in(language).arg(labels.join(listSeparator(language)));
}

QString deviceGroup(const QString &device)
{
#ifdef Q_OS_UNIX
    struct stat info{};
    if (device.isEmpty() || ::stat(QFile::encodeName(device).constData(), &info) != 0)
        return {};
    std::vector<char> buffer(16384);
    group entry{};
    group *found = nullptr;
    if (::getgrgid_r(info.st_gid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return QString::number(info.st_gid);
    return QString::fromLocal8Bit(found->gr_name);
#else
    Q_UNUSED(device);
    return {};
#endif
}

bool mayOpenDevice(const QString &device)
{
#ifdef Q_OS_UNIX
    // Checked as the program's effective user, the one that opens the port.
    return device.isEmpty()
        || ::faccessat(AT_FDCWD, QFile::encodeName(device).constData(), R_OK | W_OK, AT_EACCESS) == 0;
#else
    Q_UNUSED(device);
    return true;
#endif
}

} // namespace wr
