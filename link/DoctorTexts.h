#pragma once

#include "link/ConnectionDoctor.h"

#include <QString>

namespace wr {

// The connection test's words in the three interface languages: what it
// found (detail) and what to do about it (advice), and the lines it shows
// while it runs.

QString diagnosisDetail(const Diagnosis &diagnosis, int language);
QString diagnosisAdvice(const Diagnosis &diagnosis, int language);

// "No device for COM5 yet: plug the cable in now (9 s)…"
QString doctorWaitingText(int port, int msLeft, int language);
// "Asking the radio on COM33…"
QString doctorAskingText(int port, int language);

// The cable rule's file name, and where this installation keeps it: next to
// the program under lib/udev/rules.d, or an empty string when it is not there.
QString udevRuleName();
QString installedUdevRule();

} // namespace wr
