#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

namespace wr {

// One serial port the program can talk to, under a "COM" + number name, the
// form in which the settings store and the port dialog know ports.
struct PortEntry
{
    QString name;        // "COM3"
    QString devicePath;  // what to open: "COM3" on Windows, "/dev/ttyUSB0" elsewhere
    QString description;
    QString manufacturer;
    bool isLink = false; // named by a link of the user's in the serial-ports folder

    // The number after "COM", 0 when the name carries none.
    int number() const;
};

// The number of a port named "COM" + number: "COM7", "com7" and " COM12 "
// give 7 and 12. Nothing for any other text, or a number past 255. The one
// reader of port names: the port dialog, the port search and the tool.
std::optional<int> portNumberOf(QStringView name);
// The name of port number: "COM7".
QString comName(int number);

// What the operating system reports about one serial device, in the shape of
// QSerialPortInfo (kept separate so the catalogue can be fed a made-up list).
struct SystemPort
{
    QString portName;        // "COM3", "ttyUSB0", "cu.usbserial-1410"
    QString systemLocation;  // "\\\\.\\COM3", "/dev/ttyUSB0"
    QString description;
    QString manufacturer;
};

// The catalogue for a given device list and link folder. On Windows the
// devices keep their COM names. Elsewhere ttyS<k> is COM<k+1>, ttyUSB<k> is
// COM<33+k>, ttyACM<k> is COM<65+k> and any other device gets a number from
// 129 up, in name order. A symbolic link com<N> (N 1-255) in linkFolder adds
// COM<N> for its target or replaces the device that had that number; a link
// whose target is gone is left out. System order first, then added links by
// number.
QList<PortEntry> buildPortCatalogue(const QList<SystemPort> &devices, const QString &linkFolder, bool windowsNames);

// The serial devices the system lists now.
QList<SystemPort> systemPorts();

// The catalogue of this machine: systemPorts() plus serialPortsFolder().
QList<PortEntry> portCatalogue();

// PortList: the upper-case names of the catalogue that contain "COM", in
// catalogue order; one empty element when there is none.
QStringList GetPortList();
QStringList portListOf(const QList<PortEntry> &catalogue);

// Where users and the virtual radio put com<N> links:
// <AppLocalDataLocation>/serial-ports (~/.local/share/wrpd6t/serial-ports on Linux).
QString serialPortsFolder();

// The catalogue entry for "COM" + number, if present.
std::optional<PortEntry> findPort(int number);
std::optional<PortEntry> findPort(const QList<PortEntry> &catalogue, int number);

// Test hooks: replace the system's device list and the link folder. An empty
// function or folder restores the real ones.
void setSystemPortSource(std::function<QList<SystemPort>()> source);
void setSerialPortsFolder(const QString &folder);

} // namespace wr
