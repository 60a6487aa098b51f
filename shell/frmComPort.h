#pragma once

#include "link/ConnectionDoctor.h"
#include "link/PortCatalogue.h"
#include "ui/FormDialog.h"

#include <QList>

#include <optional>

class QComboBox;
class QLabel;
class QPushButton;

namespace wr {

// Picks the serial port of the programming cable. The list is the port
// catalogue of this machine, read afresh each time the dialog opens; beside
// it the dialog shows which device the selected name stands for. Test runs
// the connection test on the port in the list and says under it, in words
// a screen reader speaks, what stands in the way and what to do; it runs on
// the event loop, so the dialog stays usable, and a test that waits for a
// cable to be plugged in can be cancelled.
class frmComPort : public FormDialog
{
    Q_OBJECT

public:
    // Opens with portNumber selected when the system lists it.
    frmComPort(quint8 portNumber, Language language, QWidget *parent = nullptr);

    // After OK: the port the list names, or the one the dialog opened with
    // when its text names none.
    quint8 portNumber() const { return m_portNumber; }

    // Takes the port the list names, then closes the dialog as accepted.
    void accept() override;

private:
    // The port the list's text names: "COM" and 0-255; nothing for any other text.
    std::optional<quint8> chosenPort() const;
    void showDetails();
    void cmdTest_Click();
    void showTestResult(const Diagnosis &diagnosis);
    void setTestRunning(bool running);

    QList<PortEntry> m_ports;
    QComboBox *m_combo1;
    QLabel *m_lblDevice;
    QLabel *m_lblDescription;
    QPushButton *m_cmdTest;
    QLabel *m_lblTestResult;
    ConnectionDoctor *m_doctor;
    quint8 m_portNumber;
};

} // namespace wr
