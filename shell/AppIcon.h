#pragma once

#include <QIcon>

namespace wr {

// The program's icon (a hand-held radio on a blue tile), used by the main
// window, the language form and the about box.
QIcon AppIcon();

} // namespace wr
