#pragma once

#include "link/TransferOutcome.h"

#include <QDialog>

#include <memory>

class QLabel;
class QProgressBar;

namespace wr {

class CloneDriver;
class CloneEngine;

// The modal progress form of one transfer. It reads the radio into the image
// (LinkDirection 0) or writes the image into it (1) over "COM" + PortNumber,
// and owns the serial port for the length of the transfer. Under the bar a
// line says when the transfer retries or the port search moves on; Cancel
// ends the transfer as closing the form does. A write can be read back and
// compared before it counts as done. A write that stopped after its first
// row, however it stopped, ends with a warning that the radio is only partly
// written, after the messages the transfer has already shown.
class frmclone : public QDialog
{
    Q_OBJECT

public:
    explicit frmclone(QWidget *parent = nullptr);
    ~frmclone() override;

    // Opens the port if needed and starts an attempt at step 0. The form
    // calls it once it is shown; the port scan goes through it too.
    void TransferDatas();

    // True while a transfer is under way (port open or being retried).
    bool isTransferring() const;

    // Reads a completed write back and compares it before calling it done;
    // the line under the bar says "Verifying…" meanwhile. Set before the
    // form is shown.
    void setVerifyAfterWrite(bool on);
    // How the transfer ended, once the form has closed.
    const TransferOutcome &outcome() const;

Q_SIGNALS:
    // A read finished: the image, snapshot and band limits are new; the main
    // window refreshes before "Reading completed!" is shown.
    void readCompleted();
    // The port scan moved to another port; PortNumber already holds it.
    void portNumberChanged(int portNumber);

protected:
    void showEvent(QShowEvent *event) override;
    void reject() override;

private:
    // The transfer is over: warns of a radio left partly written, then closes.
    void end(int result);

    std::unique_ptr<CloneEngine> m_engine;
    std::unique_ptr<CloneDriver> m_driver;
    QProgressBar *m_progress = nullptr;
    QLabel *m_label = nullptr;
    QLabel *m_status = nullptr;
    int m_language = 0;
    bool m_started = false;
    bool m_ended = false;
};

} // namespace wr
