#pragma once

#include "link/TransferOutcome.h"

#include <QString>

namespace wr {

// The words of a transfer in the three interface languages: the progress
// form's captions, the line under its bar, the lost-connection question and
// the message a transfer ends with. The clone engine reports numbers and
// outcomes; the progress form, the batch and the tool turn them into these.

// What the progress bar is, for a screen reader: "Completion percentage".
QString progressCaption(int language);

// "Read data from radio" or "Write data to radio".
QString transferCaption(bool read, int language);
// "Completion percentage:  50%" for value rows of 188.
QString progressLabel(int value, int language);
// The line under the bar: a retry, the port search, the read-back; empty when idle.
QString statusText(const TransferStatus &status, int language);

// "Check Connection. Retry or Cancel?", then what Cancel would end with.
QString lostConnectionText(const TransferOutcome &outcome, int language, Wording wording = Wording::Window);
QString lostConnectionTitle(int language);

// What happened, then what to do about it, one thought a line: "Reading
// completed!", "Writing completed! (verified)", the port and the system's
// reason, the rows that differ after a write.
QString outcomeText(const TransferOutcome &outcome, int language, Wording wording = Wording::Window);

// "The radio is only partly written": the ports of a write that stopped
// after its first row, and that the radio must be written again before it
// is used; empty when no radio was left partly written.
QString partlyWrittenText(const TransferOutcome &outcome, int language);

// "Run the connection test", where it is: the Set menu's port dialog, or
// the tool's doctor command for the port.
QString connectionTestAdvice(int port, int language, Wording wording);

// "row 5 (address 0x0050)"
QString rowLabel(int row, int language);

} // namespace wr
