#pragma once

#include "core/Language.h"

class QMainWindow;

namespace wr {

// Names a screen reader says for the parts of the main window that show no
// text of their own, in the interface language: the toolbar and its buttons,
// which show icons only (their tool tips stay the English words), and the
// tree of editors. Run again on every switch of the language.
void nameMainWindowParts(QMainWindow *window, Language language);

} // namespace wr
