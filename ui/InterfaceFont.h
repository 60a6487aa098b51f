#pragma once

namespace wr {

// Makes the application font draw Chinese in the face of the interface
// language. Left to itself, font fallback picks the face the system's locale
// prefers, so on a system that is not set to Chinese some characters take
// Japanese shapes. In Simplified and Traditional Chinese the matching face
// of the CJK font leads (its Latin letters and digits too, which sit well
// beside the characters); in English the platform's own family leads and the
// Simplified Chinese face draws what Chinese there is.
void useInterfaceFont(int languageIndex);

} // namespace wr
