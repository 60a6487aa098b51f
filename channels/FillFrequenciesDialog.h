#pragma once

#include "channels/ChannelFill.h"
#include "ui/FormDialog.h"

#include <QList>

#include <optional>

class QLabel;
class QLineEdit;

namespace wr {

// Asks for a series of receive frequencies for the selected channels: a
// start frequency (MHz) and a step (kHz, negative to go down). While the
// user types it shows the first and the last value as they will be stored
// (moved into the bands and onto the raster as typing them would be), and
// how many values the bands or the raster move; OK is offered once both
// texts are numbers.
//
//   Start frequency (MHz):  [446.00625 ]
//   Step (kHz):             [12.5      ]
//   Channels:               1-8, 12 (9)
//   First:                  446.00625 MHz (channel 1)
//   Last:                   446.10625 MHz (channel 12)
class FillFrequenciesDialog : public FormDialog
{
    Q_OBJECT

public:
    // start: the text the start frequency opens with.
    FillFrequenciesDialog(const QList<int> &channels, const QString &start, const BandLimitArray &limits,
                          Language language, QWidget *parent = nullptr);

    // The frequencies, one a channel, or nothing while a text is no number.
    const std::optional<FrequencySeries> &series() const { return m_series; }

private:
    void preview();

    QList<int> m_channels;
    const BandLimitArray &m_limits;
    QLineEdit *m_start;
    QLineEdit *m_step;
    QLabel *m_first;
    QLabel *m_last;
    QLabel *m_moved;
    QPushButton *m_ok = nullptr;
    std::optional<FrequencySeries> m_series;
};

} // namespace wr
