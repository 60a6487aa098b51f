#pragma once

namespace wr {

// Makes the application font draw Chinese in the face of the interface
// language: the Simplified Chinese face of the CJK font for English and
// Simplified Chinese, the Traditional Chinese face for Traditional Chinese.
// Left to itself, font fallback picks the face the system's locale prefers,
// so on a system that is not set to Chinese some characters take Japanese
// shapes. Latin text keeps the platform's own family.
void useInterfaceFont(int languageIndex);

} // namespace wr
