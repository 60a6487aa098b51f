#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>

namespace wr {

// Interface languages, in the order the language list offers them.
enum Language : quint8 { English = 0, SimplifiedChinese = 1, TraditionalChinese = 2 };
constexpr int LanguageCount = 3;

// The radio's model name: the window title, the tree's root and the title of
// most message boxes, the same in every language.
QString ModelName();

// One user-visible text in the three interface languages. A Text is built
// from string literals only, so it can be a compile-time constant and tables
// of fields can hold their texts:
//
//   constexpr Text Squelch{u"Squelch Level", u"静噪等级", u"靜噪等級"};
//   constexpr Text Volume1{u"1"}; // the same in every language
class Text
{
public:
    template <std::size_t N>
    constexpr Text(const char16_t (&all)[N])
        : Text(all, all, all)
    {
    }
    template <std::size_t E, std::size_t S, std::size_t T>
    constexpr Text(const char16_t (&english)[E], const char16_t (&simplified)[S], const char16_t (&traditional)[T])
        : m_texts{QStringView(english, E - 1), QStringView(simplified, S - 1), QStringView(traditional, T - 1)}
    {
    }

    // The text in a language; an index out of range reads as English. The
    // string shares the literal's storage.
    QString in(int languageIndex) const;
    constexpr QStringView view(int languageIndex) const
    {
        return m_texts[languageIndex > English && languageIndex < LanguageCount ? std::size_t(languageIndex) : 0];
    }
    // True when text equals the text of any of the three languages.
    bool matches(QStringView text) const;

private:
    std::array<QStringView, LanguageCount> m_texts;
};

// A caption as the name of what it labels, for a screen reader or a report:
// without its mnemonic ("&OK" is "OK", "可选功能(&O)" is "可选功能") and
// without a closing colon ("P1：" is "P1").
QString captionName(const QString &caption);

// A command's caption as the title of the dialog it opens: without its
// closing ellipsis ("Import CHIRP CSV…" opens "Import CHIRP CSV").
QString dialogTitle(const Text &command, int languageIndex);

// Words shared by several forms. A value word written back is recognised in
// any of the three languages.
namespace Words {
inline constexpr Text High{u"High", u"高", u"高"};
inline constexpr Text Low{u"Low", u"低", u"低"};
inline constexpr Text Wide{u"Wide", u"宽", u"寬"};
inline constexpr Text Narrow{u"Narrow", u"窄", u"窄"};
inline constexpr Text On{u"On", u"开", u"開"};
inline constexpr Text Off{u"Off", u"关", u"關"};
inline constexpr Text Carrier{u"Carrier", u"载波", u"載波"};
inline constexpr Text OptSignal{u"Opt.Signal", u"可选信令", u"可選信令"};
inline constexpr Text None{u"None", u"无", u"無"};

inline constexpr Text OK{u"OK", u"确定", u"確定"};
inline constexpr Text Cancel{u"Cancel", u"取消", u"取消"};
inline constexpr Text Error{u"Error", u"错误", u"錯誤"};
inline constexpr Text Alert{u"Alert!", u"警告!", u"警告!"};
} // namespace Words

} // namespace wr
