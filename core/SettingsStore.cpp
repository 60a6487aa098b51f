#include "core/SettingsStore.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace wr {

namespace {

// A stored text ends at its first zero character and is cut to 1024
// characters, the most a setting holds.
QString clipped(QString text)
{
    const qsizetype zero = text.indexOf(QChar(u'\0'));
    if (zero >= 0)
        text.truncate(zero);
    return text.left(1024);
}

#ifndef Q_OS_WIN
// The registry path "A\ \B" as a QSettings group "A/ /B".
QString groupOf(const QString &path)
{
    QString group = path;
    group.replace(u'\\', u'/');
    return group;
}

// Registry value names are not case-sensitive; INI keys are, so the name is
// looked up among the group's keys.
QString storedKey(const QSettings &settings, const QString &name)
{
    const QStringList keys = settings.childKeys();
    for (const QString &key : keys) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return key;
    }
    return {};
}
#endif

} // namespace

QString SettingsStore::keyPath()
{
    return QStringLiteral("SoftWare\\ \\WR-PD6T");
}

SettingsStore::SettingsStore(QString iniFile)
    : m_iniFile(std::move(iniFile))
{
}

QString SettingsStore::defaultIniFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/settings.ini");
}

#ifdef Q_OS_WIN

bool SettingsStore::SetKeyValue(Root, const QString &path, const QString &name, const QString &text)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    const QByteArray keyName = path.toLocal8Bit();
    char keyClass[] = "1";
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, keyName.constData(), 0, keyClass, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &key, &disposition) != ERROR_SUCCESS)
        return false;
    const QByteArray value = text.toLocal8Bit();
    const LONG stored = RegSetValueExA(key, name.toLocal8Bit().constData(), 0, REG_SZ,
                                       reinterpret_cast<const BYTE *>(value.constData()),
                                       static_cast<DWORD>(value.size()));
    RegCloseKey(key);
    return stored == ERROR_SUCCESS;
}

QString SettingsStore::GetKeyValue(Root, const QString &path, const QString &name) const
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.toLocal8Bit().constData(), 0, KEY_ALL_ACCESS, &key)
        != ERROR_SUCCESS)
        return {};
    char buffer[1024] = {};
    DWORD size = sizeof buffer;
    DWORD type = 0;
    const LONG read = RegQueryValueExA(key, name.toLocal8Bit().constData(), nullptr, &type,
                                       reinterpret_cast<BYTE *>(buffer), &size);
    RegCloseKey(key);
    if (read != ERROR_SUCCESS)
        return {};
    switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
        return clipped(QString::fromLocal8Bit(buffer, static_cast<qsizetype>(qMin<DWORD>(size, sizeof buffer))));
    case REG_DWORD: {
        DWORD number = 0;
        memcpy(&number, buffer, sizeof number);
        return QString::number(number);
    }
    default:
        return {};
    }
}

#else

bool SettingsStore::SetKeyValue(Root, const QString &path, const QString &name, const QString &text)
{
    if (!QDir().mkpath(QFileInfo(m_iniFile).absolutePath()))
        return false;
    QSettings settings(m_iniFile, QSettings::IniFormat);
    settings.beginGroup(groupOf(path));
    const QString existing = storedKey(settings, name);
    if (!existing.isEmpty() && existing != name)
        settings.remove(existing);
    settings.setValue(name, text);
    settings.endGroup();
    settings.sync();
    return settings.status() == QSettings::NoError;
}

QString SettingsStore::GetKeyValue(Root, const QString &path, const QString &name) const
{
    if (!QFileInfo::exists(m_iniFile))
        return {};
    QSettings settings(m_iniFile, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError)
        return {};
    settings.beginGroup(groupOf(path));
    const QString key = storedKey(settings, name);
    if (key.isEmpty())
        return {};
    const QVariant value = settings.value(key);
    switch (value.typeId()) {
    case QMetaType::QString:
        return clipped(value.toString());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QString::number(value.toLongLong());
    default:
        return {};
    }
}

#endif

} // namespace wr
