#pragma once

#include <QString>

namespace wr {

// Interface languages, in the order the language list offers them.
enum Language : quint8 { English = 0, SimplifiedChinese = 1, TraditionalChinese = 2 };
constexpr int LanguageCount = 3;

// The radio's model name: the window title, the tree's root and the title of
// most message boxes, the same in every language.
QString ModelName();

// One user-visible text in the three interface languages.
struct Triple
{
    QString english;
    QString simplified;
    QString traditional;

    // The member for a language index; anything out of range reads as English.
    const QString &in(int languageIndex) const;
    // True when text equals any of the three forms.
    bool matches(const QString &text) const;
};

// The text of the current language (LanguageIndex of the application state).
QString TextFor(const QString &english, const QString &simplified, const QString &traditional);
QString TextFor(const Triple &text);

// Value words shared by the channel list and the feature forms. A value
// written back is recognised in any of the three languages.
namespace Words {
const Triple &High();
const Triple &Low();
const Triple &Wide();
const Triple &Narrow();
const Triple &On();
const Triple &Off();
const Triple &Carrier();
const Triple &OptSignal();
const Triple &None();
} // namespace Words

} // namespace wr
