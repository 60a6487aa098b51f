#pragma once

#include "link/PortCatalogue.h"
#include "ui/FormDialog.h"

#include <QList>

#include <optional>

class QComboBox;
class QLabel;

namespace wr {

// Picks the serial port of the programming cable. The list is the port
// catalogue of this machine, read afresh each time the dialog opens; beside
// it the dialog shows which device the selected name stands for.
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

    // The port number a combo text names: "COM" followed by 0-255 (upper or
    // lower case, surrounding blanks ignored); nothing for any other text.
    static std::optional<quint8> portNumberOf(const QString &text);

private:
    void showDetails();

    QList<PortEntry> m_ports;
    QComboBox *m_combo1;
    QLabel *m_lblDevice;
    QLabel *m_lblDescription;
    quint8 m_portNumber;
};

} // namespace wr
