// wrpd6t-tool doctor [COM<N>] [--json] [--language en|zh-CN|zh-TW] [--wait SECONDS]
//
// The connection test from the command line: the port given, else the one
// the program uses, examined as the port dialog's Test button examines it.
// One cause with its detail and advice, as text or as one JSON object;
// exit status 0 when the radio answered, 1 for any other cause.

#include "DoctorCommand.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "link/ConnectionDoctor.h"
#include "link/DoctorTexts.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonArray>

#include <optional>
#include <unistd.h>

namespace wr::tool {

namespace {

constexpr int WaitOnTerminalS = ConnectionDoctor::DefaultWaitMs / 1000;
constexpr int MostWaitS = 600;

// "en", "zh-CN", "zh-TW", or the index 0-2 the other commands take.
std::optional<int> languageOf(const QString &text)
{
    const QString name = text.trimmed().toLower().replace(u'_', u'-');
    if (name == u"en" || name == u"0")
        return English;
    if (name == u"zh-cn" || name == u"1")
        return SimplifiedChinese;
    if (name == u"zh-tw" || name == u"2")
        return TraditionalChinese;
    return std::nullopt;
}

// The port the program itself would use: the one it starts with.
int savedPort()
{
    AppState state;
    StartUp(state, SettingsStore());
    return state.PortNumber;
}

int doctor(const QStringList &arguments)
{
    CommandLine line(QStringLiteral("doctor"),
                     QStringLiteral("Tests the connection to the radio on COM<N> (without one, the port the program "
                                    "uses) and names the one thing in the way, with what to do about it. Nothing is "
                                    "written into the radio. Exit status 0 when the radio answered, 1 otherwise."));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print one JSON object: port, device, cause, detail, advice."));
    const QCommandLineOption language({QStringLiteral("l"), QStringLiteral("language")},
                                      QStringLiteral("Language of the texts: en, zh-CN or zh-TW."),
                                      QStringLiteral("language"), QStringLiteral("en"));
    const QCommandLineOption wait(QStringLiteral("wait"),
                                  QStringLiteral("How long to wait for a port that is not there to appear, in "
                                                 "seconds (%1 when standard input is a terminal, else 0).")
                                      .arg(WaitOnTerminalS),
                                  QStringLiteral("SECONDS"));
    line.parser().addOptions({json, language, wait});
    line.addArgument(QStringLiteral("[COM<N>]"), QStringLiteral("The port to test."));
    line.setMinimumArguments(0);
    if (const auto status = line.parse(arguments))
        return *status;
    if (line.arguments().size() > 1)
        return line.usageError(QStringLiteral("too many arguments"));
    const std::optional<int> chosenLanguage = languageOf(line.parser().value(language));
    if (!chosenLanguage)
        return line.usageError(
            QStringLiteral("'%1' is no language: en, zh-CN or zh-TW").arg(line.parser().value(language)));
    int waitS = ::isatty(STDIN_FILENO) ? WaitOnTerminalS : 0;
    if (line.parser().isSet(wait)) {
        bool ok = false;
        waitS = line.parser().value(wait).toInt(&ok);
        if (!ok || waitS < 0 || waitS > MostWaitS)
            return line.usageError(QStringLiteral("--wait needs a number of seconds from 0 to %1").arg(MostWaitS));
    }
    int port = savedPort();
    if (!line.arguments().isEmpty()) {
        const std::optional<int> given = portNumberOf(line.arguments().first());
        if (!given || *given == 0)
            return line.usageError(
                QStringLiteral("'%1' is not a port from COM1 to COM255").arg(line.arguments().first()));
        port = *given;
    }

    const int lang = *chosenLanguage;
    const bool terminal = ::isatty(STDERR_FILENO) != 0;
    ConnectionDoctor doctor;
    QEventLoop loop;
    Diagnosis diagnosis;
    int shownSeconds = -1;
    QObject::connect(&doctor, &ConnectionDoctor::waitingForDevice, [&](int number, int msLeft) {
        // Once a second on a terminal, in place; once otherwise.
        const int seconds = (msLeft + 999) / 1000;
        if (seconds == shownSeconds || (!terminal && shownSeconds >= 0))
            return;
        shownSeconds = seconds;
        err() << (terminal ? "\r\x1b[K" : "") << doctorWaitingText(number, msLeft, lang) << (terminal ? "" : "\n");
        err().flush();
    });
    QObject::connect(&doctor, &ConnectionDoctor::askingRadio, [&](int) {
        if (shownSeconds >= 0 && terminal)
            err() << "\r\x1b[K";
        err().flush();
    });
    QObject::connect(&doctor, &ConnectionDoctor::finished, [&](const Diagnosis &result) {
        diagnosis = result;
        loop.quit();
    });
    doctor.start(port, waitS * 1000);
    loop.exec();
    if (shownSeconds >= 0 && terminal) {
        err() << "\r\x1b[K";
        err().flush();
    }

    const QString portName = QStringLiteral("COM%1").arg(diagnosis.port);
    const QString detail = diagnosisDetail(diagnosis, lang);
    const QString advice = diagnosisAdvice(diagnosis, lang);
    if (line.parser().isSet(json)) {
        // In the order a reader looks at them; QJsonObject would sort the keys.
        const QList<std::pair<QString, QJsonValue>> fields{
            {QStringLiteral("port"), portName},
            {QStringLiteral("device"), diagnosis.device.isEmpty() ? QJsonValue() : QJsonValue(diagnosis.device)},
            {QStringLiteral("cause"), causeKey(diagnosis.cause)},
            {QStringLiteral("detail"), detail},
            {QStringLiteral("advice"), advice},
        };
        QStringList members;
        for (const auto &[key, value] : fields) {
            // A one-element array is the shortest way to have Qt quote a value.
            const QByteArray quoted = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
            members.append(u'"' + key + QStringLiteral("\":") + QString::fromUtf8(quoted.sliced(1, quoted.size() - 2)));
        }
        out() << u'{' << members.join(u',') << "}\n";
    } else {
        out() << portName << (diagnosis.device.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(diagnosis.device))
              << ": " << causeKey(diagnosis.cause) << '\n'
              << detail << '\n'
              << advice << '\n';
    }
    out().flush();
    return diagnosis.cause == Diagnosis::Cause::Ok ? Success : Failure;
}

} // namespace

Command doctorCommand()
{
    return {QStringLiteral("doctor"),
            QStringLiteral("test the connection to a radio and name what is in the way: doctor [COM<N>]"), doctor};
}

} // namespace wr::tool
