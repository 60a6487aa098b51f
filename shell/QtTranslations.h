#pragma once

namespace wr {

// Loads Qt's own translation of its standard dialogs and buttons (Yes, No,
// Cancel, the file dialog) for an interface language, replacing the one
// loaded before. English needs none. Missing translation files are not an
// error: the standard texts then stay in English.
void InstallQtTranslations(int languageIndex);

// The language index whose Qt translation is installed, -1 before the first call.
int InstalledQtTranslation();

} // namespace wr
