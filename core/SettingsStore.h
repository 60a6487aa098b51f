#pragma once

#include <QString>

namespace wr {

// The three values the program keeps between runs ("Model", "Language",
// "gbPort"), as decimal texts under one key. On Windows they live in the
// per-machine registry key below; elsewhere in an INI file in the user's
// configuration folder, under the same key path and names.
class SettingsStore
{
public:
    enum class Root { LocalMachine };

    static QString keyPath(); // "SoftWare\\ \\WR-PD6T"

    // The INI file used where there is no registry; tests pass a file of
    // their own.
    explicit SettingsStore(QString iniFile = defaultIniFile());

    // Stores text under the key, creating the key when missing. Returns false
    // when the store could not be written; callers ignore that.
    bool SetKeyValue(Root root, const QString &path, const QString &name, const QString &text);

    // The stored text, a stored number as decimal text, or "" when the key or
    // value is missing or unreadable.
    QString GetKeyValue(Root root, const QString &path, const QString &name) const;

    static QString defaultIniFile();

private:
    QString m_iniFile;
};

} // namespace wr
