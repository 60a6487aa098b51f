#include "link/TransferTexts.h"

#include "core/Language.h"
#include "core/MemoryImage.h"
#include "link/CloneEngine.h"
#include "link/PortCatalogue.h"

#include <QStringList>

namespace wr {

namespace {

constexpr Text ReadCaption{u"Read data from radio", u"从对讲机读取数据", u"從對講機讀取數據"};
constexpr Text WriteCaption{u"Write data to radio", u"向对讲机写入数据", u"向對講機寫入數據"};
constexpr Text ProgressCaption{u"Completion percentage", u"完成进度", u"完成進度"};
constexpr Text LostConnection{u"Check Connection. Retry or Cancel?", u"检测连接。重试或取消？",
                              u"檢測連接。重試或取消？"};
constexpr Text ReadDone{u"Reading completed!", u"成功读完！", u"成功讀完"};
constexpr Text WriteDone{u"Writing completed!", u"成功写完！", u"成功寫完"};
constexpr Text Verified{u" (verified)", u"（已校验）", u"（已校驗）"};

constexpr Text NoAnswerStatus{u"No answer on %1, retrying (%2 of %3)\u2026",
    u"%1 无应答，正在重试（第 %2 次，共 %3 次）\u2026",
    u"%1 無應答，正在重試（第 %2 次，共 %3 次）\u2026"};
constexpr Text WrongAnswerStatus{u"Unexpected answer on %1, retrying (%2 of %3)\u2026",
    u"%1 应答有误，正在重试（第 %2 次，共 %3 次）\u2026",
    u"%1 應答有誤，正在重試（第 %2 次，共 %3 次）\u2026"};
constexpr Text TryingPortStatus{u"Trying %1\u2026", u"正在尝试 %1\u2026", u"正在嘗試 %1\u2026"};
constexpr Text VerifyingStatus{u"Verifying\u2026", u"正在校验\u2026", u"正在校驗\u2026"};

constexpr Text NoAnswer{u"The radio did not answer.", u"对讲机没有应答。", u"對講機沒有應答。"};
constexpr Text NoAnswerReadingBack{
    u"Writing completed, but the radio did not answer when the rows were read back to check them.",
    u"写入已完成，但回读校验时对讲机没有应答。",
    u"寫入已完成，但回讀校驗時對講機沒有應答。"};
constexpr Text WrongIdentity{u"The radio on %1 answered as \u201C%2\u201D (%3): this program serves the WR-PD6T only.",
    u"%1 上的对讲机应答为\u201C%2\u201D（%3）：本程序只适用于 WR-PD6T。",
    u"%1 上的對講機應答為「%2」（%3）：本程式只適用於 WR-PD6T。"};
constexpr Text Cancelled{u"The transfer was cancelled.", u"传输已取消。", u"傳輸已取消。"};
constexpr Text RowsDiffer{u"Writing completed, but reading it back found other bytes in %1. The radio is not as "
                          u"intended: write it again.",
    u"写入已完成，但回读校验发现%1与写入的数据不同。对讲机中的数据与预期不符：请重新写入。",
    u"寫入已完成，但回讀校驗發現%1與寫入的數據不同。對講機中的數據與預期不符：請重新寫入。"};
constexpr Text PartlyWritten{
    u"The radio is only partly written: the write on %1 did not finish.\nWrite the radio again before using it.",
    u"对讲机只写入了一部分：%1 上的写入没有完成。\n请重新写入对讲机后再使用。",
    u"對講機只寫入了一部分：%1 上的寫入沒有完成。\n請重新寫入對講機後再使用。"};
constexpr Text Row{u"row %1 (address 0x%2)", u"第 %1 行（地址 0x%2）", u"第 %1 行（地址 0x%2）"};
constexpr Text MoreRows{u"%1 and %2 more rows", u"%1及另外 %2 行", u"%1及另外 %2 行"};
constexpr Text TestInWindow{u"Run the connection test: Set \u2192 Communication Port \u2192 Test.",
    u"请运行连接测试：设置 \u2192 通信端口 \u2192 测试。",
    u"請執行連接測試：設置 \u2192 通信端口 \u2192 測試。"};
constexpr Text TestOnCommandLine{u"Run the connection test: wrpd6t-tool doctor %1",
    u"请运行连接测试：wrpd6t-tool doctor %1",
    u"請執行連接測試：wrpd6t-tool doctor %1"};

constexpr int RowsNamed = 3;

// What happened, without the advice.
QString whatHappened(const TransferOutcome &outcome, int language, Wording wording)
{
    using Kind = TransferOutcome::Kind;
    switch (outcome.kind) {
    case Kind::Completed:
        if (outcome.read)
            return ReadDone.in(language);
        return WriteDone.in(language) + (outcome.verified ? Verified.in(language) : QString());
    case Kind::Cancelled:
        return Cancelled.in(language);
    case Kind::NoAnswer:
        return (outcome.verifying ? NoAnswerReadingBack : NoAnswer).in(language) + u'\n'
            + portsTriedLine(outcome.portsTried, language);
    case Kind::WrongIdentification:
        return WrongIdentity.in(language).arg(comName(outcome.port), printableBytes(outcome.identity),
                                              QString::fromLatin1(outcome.identity.toHex(' ').toUpper()));
    case Kind::PortFailed:
        return describePortProblem(outcome.port, outcome.problem, language, wording)
            + (outcome.chosenByScan ? u'\n' + scanNote(outcome.port, outcome.chosenPort, language) : QString());
    case Kind::PortLost:
        return describePortProblem(outcome.port, outcome.problem, language, wording);
    case Kind::VerificationFailed: {
        QStringList rows;
        for (const int row : outcome.differingRows.first(std::min<qsizetype>(RowsNamed, outcome.differingRows.size())))
            rows.append(rowLabel(row, language));
        QString named = rows.join(listSeparator(language));
        if (outcome.differingRows.size() > RowsNamed)
            named = MoreRows.in(language).arg(named).arg(outcome.differingRows.size() - RowsNamed);
        return RowsDiffer.in(language).arg(named);
    }
    }
    return {};
}

bool wantsConnectionTest(TransferOutcome::Kind kind)
{
    using Kind = TransferOutcome::Kind;
    return kind == Kind::NoAnswer || kind == Kind::WrongIdentification || kind == Kind::PortFailed
        || kind == Kind::PortLost;
}

} // namespace

QString transferCaption(bool read, int language)
{
    return (read ? ReadCaption : WriteCaption).in(language);
}

QString progressCaption(int language)
{
    return ProgressCaption.in(language);
}

QString progressLabel(int value, int language)
{
    // Whole percent, rounded to nearest; n * 100 / 188 never ends in exactly .5.
    const int percent = (value * 100 + CloneEngine::ProgressMaximum / 2) / CloneEngine::ProgressMaximum;
    return ProgressCaption.in(language) + QStringLiteral(":  %1%").arg(percent);
}

QString statusText(const TransferStatus &status, int language)
{
    using Kind = TransferStatus::Kind;
    switch (status.kind) {
    case Kind::Idle:
        break;
    case Kind::NoAnswerRetrying:
    case Kind::WrongAnswerRetrying:
        return (status.kind == Kind::NoAnswerRetrying ? NoAnswerStatus : WrongAnswerStatus)
            .in(language)
            .arg(comName(status.port))
            .arg(status.retry)
            .arg(status.budget);
    case Kind::TryingPort:
        return TryingPortStatus.in(language).arg(comName(status.port));
    case Kind::Verifying:
        return VerifyingStatus.in(language);
    }
    return {};
}

QString lostConnectionText(const TransferOutcome &outcome, int language, Wording wording)
{
    return LostConnection.in(language) + QStringLiteral("\n\n") + outcomeText(outcome, language, wording);
}

QString lostConnectionTitle(int language)
{
    return Words::Error.in(language);
}

QString outcomeText(const TransferOutcome &outcome, int language, Wording wording)
{
    QString text = whatHappened(outcome, language, wording);
    if (wantsConnectionTest(outcome.kind))
        text += u'\n' + connectionTestAdvice(outcome.port, language, wording);
    return text;
}

QString partlyWrittenText(const TransferOutcome &outcome, int language)
{
    if (outcome.partlyWritten.isEmpty())
        return {};
    QStringList ports;
    for (const int port : outcome.partlyWritten)
        ports.append(comName(port));
    return PartlyWritten.in(language).arg(ports.join(listSeparator(language)));
}

QString connectionTestAdvice(int port, int language, Wording wording)
{
    if (wording == Wording::Window)
        return TestInWindow.in(language);
    return TestOnCommandLine.in(language).arg(comName(port));
}

QString rowLabel(int row, int language)
{
    return Row.in(language).arg(row).arg(
        QStringLiteral("%1").arg(row * MemoryImage::RowSize, 4, 16, QLatin1Char('0')).toUpper());
}

} // namespace wr
