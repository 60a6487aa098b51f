#pragma once

#include <QDialog>

namespace wr {

// The modal progress form of one transfer. It reads the radio into the image
// (LinkDirection 0) or writes the image into it (1) over "COM" + PortNumber,
// and owns the serial port for the length of the transfer.
class frmclone : public QDialog
{
    Q_OBJECT

public:
    explicit frmclone(QWidget *parent = nullptr);
    ~frmclone() override;

Q_SIGNALS:
    // A read finished: the image, snapshot and band limits are new; the main
    // window refreshes before "Reading completed!" is shown.
    void readCompleted();
    // The port scan moved to another port; PortNumber already holds it.
    void portNumberChanged(int portNumber);
};

} // namespace wr
