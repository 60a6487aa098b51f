#pragma once

#include <QList>
#include <QString>

namespace wr {

// Why a serial port could not be opened, or went away during a transfer,
// in terms a user can act on. The serial layer's own text is kept as it is;
// the kind picks one line of advice to go with it.
struct PortProblem
{
    enum class Kind {
        Missing,      // no such device: cable unplugged, or the wrong port chosen
        NoPermission, // the device exists but this user may not open it
        Busy,         // another program has the port open or locked
        Lost,         // the device went away while it was open
        Other,        // anything else: the serial layer's text alone
    };
    Kind kind = Kind::Other;
    QString device;     // what the COM name stands for ("/dev/ttyUSB0"); empty when unknown
    QString systemText; // the serial layer's text ("Permission denied")
    QString group;      // NoPermission: the group that owns the device ("dialout"); empty when unknown
};

// Whom the words are for: a window (Retry buttons, the Set menu) or the
// command line (run the command again, the doctor command).
enum class Wording { Window, CommandLine };

// A port tried during a transfer: its number and, once known, its device.
struct PortTried
{
    int number = 0;
    QString device;
};

// Between the items of a list: ", " in English, "、" in Chinese.
QString listSeparator(int language);
// Bytes as text, a dot for each byte that does not print ("QAWPD7T", ".").
QString printableBytes(const QByteArray &bytes);

// "COM33 (/dev/ttyUSB0)", or "COM33" when the device is not known.
QString portLabel(int number, const QString &device);

// "COM33 (/dev/ttyUSB0): Permission denied" and, for the common cases, a
// line of advice in the language given.
QString describePortProblem(int number, const PortProblem &problem, int language,
                            Wording wording = Wording::Window);

// Says that the port search, not the user, chose the port that failed.
QString scanNote(int triedNumber, int chosenNumber, int language);

// "Ports tried: COM5 (/dev/ttyS4), COM1 (/dev/ttyS0)", in the language given.
QString portsTriedLine(const QList<PortTried> &ports, int language);

// The name of the group that owns a device file; empty when it cannot be told.
QString deviceGroup(const QString &device);

// Whether this process may open the device for reading and writing; true
// where the system cannot say (a failed open then means someone else has it).
bool mayOpenDevice(const QString &device);

} // namespace wr
