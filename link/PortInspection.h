#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace wr {

// What the system says about a serial device before a single byte is sent:
// whether it is there, whether it is a serial line at all, whether this
// user may open it, and who else has it open. The connection doctor reads
// these facts; each is a plain look at the system, no guesses.

// A process that has the device open.
struct PortHolder
{
    qint64 pid = 0;
    QString name; // the process's command name ("ModemManager", "brltty")
};

struct DeviceFacts
{
    enum class Kind {
        Missing,    // nothing at that path
        NotSerial,  // a file, a folder or a device that is no serial line
        Serial,     // a character device that answers as a terminal line
        Unknown,    // there, but this user cannot look (the open is refused)
    };
    Kind kind = Kind::Missing;
    bool mayOpen = false;    // this process may open it for reading and writing
    bool busy = false;       // an open was refused because someone else has it exclusively
    QString systemText;      // the system's words where a look failed

    // The group that owns the device and what this user has to do with it.
    QString group;
    bool serialGroup = false;  // the group is one serial devices are given to: dialout, uucp
    bool userListed = false;   // the user database puts this user in that group
    bool processHasGroup = false; // this process runs with that group
};

// Looks at the device at path: stat, access, a non-blocking open.
DeviceFacts inspectDevice(const QString &path);

// The processes that have the device open, this one aside; hidden is set
// when some processes could not be looked into (another user's), and
// running names ModemManager and brltty when either runs at all.
struct HolderScan
{
    QList<PortHolder> holders;
    bool hidden = false;
    QStringList running;
};
HolderScan scanHolders(const QString &path);

// The groups serial devices are given to, where a user may be advised to
// join; never root, sudo, wheel, adm or disk.
bool isSerialGroup(const QString &group);

// The name of the user this process runs as.
QString currentUserName();

} // namespace wr
