#pragma once

#include "link/PortCatalogue.h"

#include <QDialog>
#include <QList>

#include <optional>

class QComboBox;
class QLabel;
class QPushButton;

namespace wr {

// Picks the serial port of the programming cable. The list is the port
// catalogue of this machine, read afresh each time the dialog opens; beside
// it the dialog shows which device the selected name stands for.
class frmComPort : public QDialog
{
    Q_OBJECT

public:
    // Opens with portNumber selected when the system lists it.
    frmComPort(quint8 portNumber, int language, QWidget *parent = nullptr);

    // After OK: the port the list names, or the one the dialog opened with
    // when its text names none.
    quint8 portNumber() const { return m_portNumber; }

    // The port number a combo text names: "COM" followed by 0-255 (upper or
    // lower case, surrounding blanks ignored); nothing for any other text.
    static std::optional<quint8> portNumberOf(const QString &text);

private:
    void CmdOK_Click();
    void showDetails();

    QList<PortEntry> m_ports;
    QLabel *m_label1;
    QComboBox *m_combo1;
    QLabel *m_lblDevice;
    QLabel *m_lblDescription;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
    quint8 m_portNumber;
};

} // namespace wr
