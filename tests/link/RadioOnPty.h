#pragma once

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include "link/PortCatalogue.h"

#include <QDir>
#include <QFile>

namespace wr::test {

// A virtual radio on a pseudo-terminal in this process, listed as COM200
// (or the port given) through a link in a private serial-ports folder; the
// system's own serial devices are hidden so a port scan only sees the
// radios of the test. Without pacing every answer is on the line at once.
class RadioOnPty
{
public:
    explicit RadioOnPty(const QString &folder, sim::RadioFaults faults = {}, bool pacing = false, int com = 200)
        : radio(faults)
        , m_line(radio, pacing)
        , m_link(folder + QStringLiteral("/com%1").arg(com))
    {
        QDir().mkpath(folder);
        setSerialPortsFolder(folder);
        setSystemPortSource([] { return QList<SystemPort>{}; });
        m_open = m_line.open() && QFile::link(m_line.devicePath(), m_link);
    }
    ~RadioOnPty()
    {
        QFile::remove(m_link);
        setSerialPortsFolder(QString());
        setSystemPortSource({});
    }

    bool isOpen() const { return m_open; }
    QString errorString() const { return m_line.errorString(); }
    QString devicePath() const { return m_line.devicePath(); }
    // Pulls the cable: the device is gone and the system lists it no more.
    // (The link goes too: another test may be given the same device name.)
    void hangUp()
    {
        m_line.hangUp();
        QFile::remove(m_link);
    }

    sim::VirtualRadio radio;

private:
    sim::PtyRadio m_line;
    QString m_link;
    bool m_open = false;
};

} // namespace wr::test
