#pragma once

#include "PtyRadio.h"
#include "VirtualRadio.h"

#include "link/PortCatalogue.h"

#include <QDir>
#include <QFile>
#include <QList>
#include <QString>

#include <memory>

namespace wr::test {

// A virtual radio on a pseudo-terminal in this process, listed as COM<port>
// through a link in a private serial-ports folder; the system's own serial
// devices are hidden so a port scan only sees the radios of the test.
class RadioOnPty
{
public:
    RadioOnPty(const QString &folder, sim::RadioFaults faults = {}, int port = 200)
        : radio(faults)
        , m_line(radio, false)
        , m_folder(folder)
        , m_port(port)
    {
        QDir().mkpath(folder);
        setSerialPortsFolder(folder);
        setSystemPortSource([] { return QList<SystemPort>{}; });
        m_open = m_line.open() && QFile::link(m_line.devicePath(), linkPath());
    }

    ~RadioOnPty()
    {
        QFile::remove(linkPath());
        setSerialPortsFolder(QString());
        setSystemPortSource({});
    }

    bool isOpen() const { return m_open; }
    QString errorString() const { return m_line.errorString(); }
    QString linkPath() const { return m_folder + QStringLiteral("/com%1").arg(m_port); }

    sim::VirtualRadio radio;

private:
    sim::PtyRadio m_line;
    QString m_folder;
    int m_port;
    bool m_open = false;
};

} // namespace wr::test
