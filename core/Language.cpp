#include "core/Language.h"

#include "core/AppState.h"

namespace wr {

namespace {

const QString &pick(int languageIndex, const QString &english, const QString &simplified,
                    const QString &traditional)
{
    switch (languageIndex) {
    case SimplifiedChinese:
        return simplified;
    case TraditionalChinese:
        return traditional;
    default:
        return english;
    }
}

} // namespace

QString ModelName()
{
    return QStringLiteral("WR-PD6T");
}

const QString &Triple::in(int languageIndex) const
{
    return pick(languageIndex, english, simplified, traditional);
}

bool Triple::matches(const QString &text) const
{
    return text == english || text == simplified || text == traditional;
}

QString TextFor(const QString &english, const QString &simplified, const QString &traditional)
{
    return pick(app().LanguageIndex, english, simplified, traditional);
}

QString TextFor(const Triple &text)
{
    return text.in(app().LanguageIndex);
}

namespace Words {

#define WR_WORD(name, en, sc, tc)                                                                  \
    const Triple &name()                                                                           \
    {                                                                                              \
        static const Triple word{QStringLiteral(en), QStringLiteral(sc), QStringLiteral(tc)};     \
        return word;                                                                               \
    }

WR_WORD(High, "High", "高", "高")
WR_WORD(Low, "Low", "低", "低")
WR_WORD(Wide, "Wide", "宽", "寬")
WR_WORD(Narrow, "Narrow", "窄", "窄")
WR_WORD(On, "On", "开", "開")
WR_WORD(Off, "Off", "关", "關")
WR_WORD(Carrier, "Carrier", "载波", "載波")
WR_WORD(OptSignal, "Opt.Signal", "可选信令", "可選信令")
WR_WORD(None, "None", "无", "無")

#undef WR_WORD

} // namespace Words

} // namespace wr
