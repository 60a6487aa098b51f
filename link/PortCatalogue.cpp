#include "link/PortCatalogue.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSerialPortInfo>
#include <QStandardPaths>

#include <algorithm>
#include <map>

namespace wr {

namespace {

constexpr int FirstOtherNumber = 129;
constexpr int LastNumber = 255;

struct Hooks
{
    std::function<QList<SystemPort>()> source;
    QString folder;
};

Hooks &hooks()
{
    static Hooks instance;
    return instance;
}

// ttyS0 -> 1, ttyUSB0 -> 33, ttyACM0 -> 65; 0 for any other name.
int unixSerialNumber(const QString &portName)
{
    static const QRegularExpression pattern(QStringLiteral("^tty(S|USB|ACM)(\\d{1,3})$"));
    const QRegularExpressionMatch match = pattern.match(portName);
    if (!match.hasMatch())
        return 0;
    const int k = match.captured(2).toInt();
    const QString kind = match.captured(1);
    const int base = kind == QLatin1String("S") ? 1 : kind == QLatin1String("USB") ? 33 : 65;
    const int limit = kind == QLatin1String("ACM") ? FirstOtherNumber - base : 32;
    return k < limit ? base + k : 0;
}

// com<N> links of the folder, by number.
std::map<int, QString> linkTargets(const QString &folder)
{
    std::map<int, QString> links;
    if (folder.isEmpty())
        return links;
    static const QRegularExpression pattern(QStringLiteral("^com(\\d{1,3})$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QDir dir(folder);
    const QFileInfoList entries = dir.entryInfoList(QDir::System | QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &info : entries) {
        const QRegularExpressionMatch match = pattern.match(info.fileName());
        if (!match.hasMatch() || !info.isSymLink())
            continue;
        const int number = match.captured(1).toInt();
        if (number < 1 || number > LastNumber)
            continue;
        // A virtual radio that was killed leaves its link behind; its pty is gone.
        const QString target = info.symLinkTarget();
        if (target.isEmpty() || !QFileInfo::exists(target))
            continue;
        links[number] = target;
    }
    return links;
}

} // namespace

std::optional<int> portNumberOf(QStringView name)
{
    name = name.trimmed();
    if (name.size() < 4 || name.size() > 6 || !name.startsWith(u"COM", Qt::CaseInsensitive))
        return std::nullopt;
    int number = 0;
    for (const QChar c : name.sliced(3)) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
        number = number * 10 + (c.unicode() - u'0');
    }
    return number <= LastNumber ? std::optional<int>(number) : std::nullopt;
}

QString comName(int number)
{
    return QStringLiteral("COM%1").arg(number);
}

int PortEntry::number() const
{
    return portNumberOf(name).value_or(0);
}

QList<PortEntry> buildPortCatalogue(const QList<SystemPort> &devices, const QString &linkFolder, bool windowsNames)
{
    QList<PortEntry> catalogue;
    if (windowsNames) {
        for (const SystemPort &device : devices)
            catalogue.append({device.portName, device.portName, device.description, device.manufacturer});
    } else {
        QList<SystemPort> others;
        for (const SystemPort &device : devices) {
            const int number = unixSerialNumber(device.portName);
            if (number > 0)
                catalogue.append({comName(number), device.systemLocation, device.description, device.manufacturer});
            else
                others.append(device);
        }
        std::stable_sort(others.begin(), others.end(),
                         [](const SystemPort &a, const SystemPort &b) { return a.portName < b.portName; });
        int next = FirstOtherNumber;
        for (const SystemPort &device : others) {
            if (next > LastNumber)
                break;
            catalogue.append({comName(next++), device.systemLocation, device.description, device.manufacturer});
        }
    }

    for (const auto &[number, target] : linkTargets(linkFolder)) {
        PortEntry entry{comName(number), target, QString(), QString(), true};
        auto existing = std::find_if(catalogue.begin(), catalogue.end(),
                                     [number](const PortEntry &e) { return e.number() == number; });
        if (existing != catalogue.end())
            *existing = entry;
        else
            catalogue.append(entry);
    }
    return catalogue;
}

QList<SystemPort> systemPorts()
{
    if (hooks().source)
        return hooks().source();
    QList<SystemPort> ports;
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : infos)
        ports.append({info.portName(), info.systemLocation(), info.description(), info.manufacturer()});
    return ports;
}

QList<PortEntry> portCatalogue()
{
#ifdef Q_OS_WIN
    const bool windowsNames = true;
#else
    const bool windowsNames = false;
#endif
    return buildPortCatalogue(systemPorts(), serialPortsFolder(), windowsNames);
}

QStringList portListOf(const QList<PortEntry> &catalogue)
{
    QStringList list;
    for (const PortEntry &entry : catalogue) {
        const QString name = entry.name.toUpper();
        if (name.contains(QLatin1String("COM")))
            list.append(name);
    }
    if (list.isEmpty())
        list.append(QString());
    return list;
}

QStringList GetPortList()
{
    return portListOf(portCatalogue());
}

QString serialPortsFolder()
{
    if (!hooks().folder.isEmpty())
        return hooks().folder;
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/serial-ports");
}

std::optional<PortEntry> findPort(const QList<PortEntry> &catalogue, int number)
{
    for (const PortEntry &entry : catalogue) {
        if (entry.number() == number)
            return entry;
    }
    return std::nullopt;
}

std::optional<PortEntry> findPort(int number)
{
    return findPort(portCatalogue(), number);
}

void setSystemPortSource(std::function<QList<SystemPort>()> source)
{
    hooks().source = std::move(source);
}

void setSerialPortsFolder(const QString &folder)
{
    hooks().folder = folder;
}

} // namespace wr
