#include "core/AppState.h"

#include "core/FrequencyCodec.h"
#include "core/SettingsStore.h"
#include "core/ToneCodec.h"

#include <QCoreApplication>
#include <QDir>

namespace wr {

namespace {

const QString &settingsPath()
{
    static const QString path = SettingsStore::keyPath();
    return path;
}

// A stored setting: empty gives 1; otherwise the leading number of the text,
// rounded to a whole number (a half away from zero), so "abc" gives 0.
qint64 storedNumber(const SettingsStore &settings, const QString &name)
{
    const QString text = settings.GetKeyValue(SettingsStore::Root::LocalMachine, settingsPath(), name);
    if (text.isEmpty())
        return 1;
    const qint64 tenths = freq::leadingNumber(text, 1);
    return tenths >= 0 ? (tenths + 5) / 10 : -((-tenths + 5) / 10);
}

// Language and port must fit their ranges; a value this program never writes
// falls back to the default.
quint8 inRange(qint64 value, qint64 maximum)
{
    return value >= 0 && value <= maximum ? static_cast<quint8>(value) : quint8{1};
}

} // namespace

void AppState::LoadBandLimits()
{
    BandLimits = wr::LoadBandLimits(image);
}

AppState &app()
{
    static AppState state;
    return state;
}

void StartUp(AppState &state, const SettingsStore &settings)
{
    state.ModelIndex = static_cast<quint8>(storedNumber(settings, QStringLiteral("Model")) & 15);
    state.LanguageIndex = inRange(storedNumber(settings, QStringLiteral("Language")), 2);
    state.PortNumber = inRange(storedNumber(settings, QStringLiteral("gbPort")), 255);

    state.FormOpenFlags = AppState::ChannelListOpen;
    state.ToneTable = BuildToneTable(state.LanguageIndex);
    state.ChannelGridRows = 129;
    state.ChannelGridRowsShown = 129;
    state.ChannelGridColumns = 9;
    state.CurrentFileName = QStringLiteral("Untitled");
    const QString folder = QCoreApplication::instance() ? QCoreApplication::applicationDirPath()
                                                        : QDir::currentPath();
    state.AppFolder = QDir::toNativeSeparators(folder);
    if (!state.AppFolder.endsWith(QDir::separator()))
        state.AppFolder += QDir::separator();

    // The band limits are worked out from the defaults before the fresh
    // image erases row 416 again.
    WriteDefaultBandLimits(state.image);
    state.LoadBandLimits();
    state.image.InitImage();
}

void InitApplicationIdentity()
{
    QCoreApplication::setApplicationName(QStringLiteral("wrpd6t"));
    QCoreApplication::setApplicationVersion(ProgramVersion());
}

QString ProgramVersion()
{
    return QStringLiteral(WRPD6T_VERSION);
}

void SaveSettings(const AppState &state, SettingsStore &settings)
{
    const auto root = SettingsStore::Root::LocalMachine;
    settings.SetKeyValue(root, settingsPath(), QStringLiteral("Model"), QString::number(state.ModelIndex));
    settings.SetKeyValue(root, settingsPath(), QStringLiteral("language"), QString::number(state.LanguageIndex));
    settings.SetKeyValue(root, settingsPath(), QStringLiteral("gbPort"), QString::number(state.PortNumber));
}

} // namespace wr
