#include "link/PortInspection.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#ifdef Q_OS_UNIX
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>
#endif

namespace wr {

namespace {

#ifdef Q_OS_UNIX
QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// Whether the group database lists user in gid, as a member or as the
// user's own group.
bool userListedIn(gid_t gid, const char *user, gid_t primary)
{
    if (primary == gid)
        return true;
    std::vector<char> buffer(65536);
    group entry{};
    group *found = nullptr;
    if (::getgrgid_r(gid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return false;
    for (char **member = found->gr_mem; member && *member; ++member) {
        if (std::strcmp(*member, user) == 0)
            return true;
    }
    return false;
}

// Whether this process runs with gid, as its own group or a supplementary one.
bool processHas(gid_t gid)
{
    if (::getegid() == gid)
        return true;
    const int count = ::getgroups(0, nullptr);
    std::vector<gid_t> groups(std::size_t(std::max(count, 0)));
    if (count > 0 && ::getgroups(count, groups.data()) == count)
        return std::find(groups.begin(), groups.end(), gid) != groups.end();
    return false;
}

void describeGroup(const struct stat &info, DeviceFacts &facts)
{
    std::vector<char> buffer(65536);
    group entry{};
    group *found = nullptr;
    if (::getgrgid_r(info.st_gid, &entry, buffer.data(), buffer.size(), &found) == 0 && found)
        facts.group = QString::fromLocal8Bit(found->gr_name);
    else
        facts.group = QString::number(info.st_gid);
    facts.serialGroup = isSerialGroup(facts.group);
    facts.processHasGroup = processHas(info.st_gid);
    passwd user{};
    passwd *me = nullptr;
    std::vector<char> userBuffer(16384);
    if (::getpwuid_r(::geteuid(), &user, userBuffer.data(), userBuffer.size(), &me) == 0 && me)
        facts.userListed = userListedIn(info.st_gid, me->pw_name, me->pw_gid);
}
#endif

#ifdef Q_OS_LINUX
// Whether one of the open files listed in a /proc/<pid>/fd folder is the device.
bool holdsDevice(const QByteArray &fdFolder, dev_t device)
{
    DIR *folder = ::opendir(fdFolder.constData());
    if (!folder)
        return false;
    bool holds = false;
    while (const dirent *entry = ::readdir(folder)) {
        struct stat target{};
        const QByteArray path = fdFolder + '/' + entry->d_name;
        if (entry->d_name[0] != '.' && ::stat(path.constData(), &target) == 0 && S_ISCHR(target.st_mode)
            && target.st_rdev == device) {
            holds = true;
            break;
        }
    }
    ::closedir(folder);
    return holds;
}
#endif

} // namespace

bool isSerialGroup(const QString &group)
{
    return group == u"dialout" || group == u"uucp";
}

QString currentUserName()
{
#ifdef Q_OS_UNIX
    passwd user{};
    passwd *me = nullptr;
    std::vector<char> buffer(16384);
    if (::getpwuid_r(::geteuid(), &user, buffer.data(), buffer.size(), &me) == 0 && me)
        return QString::fromLocal8Bit(me->pw_name);
    return QString::number(::geteuid());
#else
    return qEnvironmentVariable("USERNAME");
#endif
}

DeviceFacts inspectDevice(const QString &path)
{
    DeviceFacts facts;
#ifdef Q_OS_UNIX
    const QByteArray name = QFile::encodeName(path);
    struct stat info{};
    if (::stat(name.constData(), &info) != 0) {
        facts.systemText = systemError(errno);
        return facts;
    }
    if (!S_ISCHR(info.st_mode)) {
        facts.kind = DeviceFacts::Kind::NotSerial;
        return facts;
    }
    describeGroup(info, facts);
    // Checked as the program's effective user, the one that opens the port.
    facts.mayOpen = ::faccessat(AT_FDCWD, name.constData(), R_OK | W_OK, AT_EACCESS) == 0;
    if (!facts.mayOpen) {
        facts.kind = DeviceFacts::Kind::Unknown;
        facts.systemText = systemError(errno);
        return facts;
    }
    // Opening without waiting for a carrier and without becoming the
    // controlling terminal changes nothing on the line.
    const int fd = ::open(name.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        const int error = errno;
        facts.systemText = systemError(error);
        facts.kind = error == ENOENT || error == ENXIO || error == ENODEV ? DeviceFacts::Kind::Missing
                                                                         : DeviceFacts::Kind::Unknown;
        facts.busy = error == EBUSY;
        facts.mayOpen = error != EACCES && error != EPERM;
        return facts;
    }
    facts.kind = ::isatty(fd) ? DeviceFacts::Kind::Serial : DeviceFacts::Kind::NotSerial;
    ::close(fd);
#else
    // Windows names are the devices themselves; only an open can tell.
    facts.kind = DeviceFacts::Kind::Serial;
    facts.mayOpen = true;
    Q_UNUSED(path);
#endif
    return facts;
}

HolderScan scanHolders(const QString &path)
{
    HolderScan scan;
#ifdef Q_OS_LINUX
    struct stat device{};
    if (::stat(QFile::encodeName(path).constData(), &device) != 0 || !S_ISCHR(device.st_mode))
        return scan;
    const QString self = QString::number(QCoreApplication::applicationPid());
    const QStringList pids = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &pid : pids) {
        bool numeric = false;
        const qint64 number = pid.toLongLong(&numeric);
        if (!numeric || pid == self)
            continue;
        QFile commFile(QStringLiteral("/proc/%1/comm").arg(pid));
        const QString comm = commFile.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(commFile.readAll()).trimmed()
                                                                  : QString();
        if ((comm == u"ModemManager" || comm.startsWith(u"brltty")) && !scan.running.contains(comm))
            scan.running.append(comm);
        const QString fdFolder = QStringLiteral("/proc/%1/fd").arg(pid);
        const QByteArray fdPath = QFile::encodeName(fdFolder);
        if (::access(fdPath.constData(), R_OK | X_OK) != 0) {
            scan.hidden = scan.hidden || errno == EACCES;
            continue;
        }
        if (holdsDevice(fdPath, device.st_rdev))
            scan.holders.append({number, comm});
    }
#else
    Q_UNUSED(path);
#endif
    return scan;
}

} // namespace wr
