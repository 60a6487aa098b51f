#include "shell/LanguageForm.h"

#include "shell/AppIcon.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The list's positions are the languages.
constexpr Choice Languages[]{
    {English, {u"English", u"英文", u"英文"}},
    {SimplifiedChinese, {u"Simplified Chinese", u"简体中文", u"簡體中文"}},
    {TraditionalChinese, {u"Traditional Chinese", u"繁体中文", u"繁體中文"}},
};
constexpr ListField Lists[]{{.control = u"cboLang", .words = Languages}};
constexpr Caption Captions[]{
    {u"LanguageForm", {u"Language File Setup", u"语言设置", u"語言設置"}},
    {u"lblLang", {u"Language Mode", u"语言模式", u"語言模式"}},
    {u"CmdOK", Words::OK},
    {u"cmdCancel", Words::Cancel},
};
constexpr FieldTable Texts{.captions = Captions, .lists = Lists};

} // namespace

LanguageForm::LanguageForm(Language language, QWidget *parent)
    : FormDialog(language, parent)
{
    setObjectName(u"LanguageForm"_s);
    setWindowIcon(AppIcon());
    auto *label = makeControl<QLabel>(u"lblLang"_s);
    m_cboLang = makeControl<QComboBox>(u"cboLang"_s);
    m_cboLang->setMinimumContentsLength(18);
    label->setBuddy(m_cboLang);

    auto *fields = new QHBoxLayout;
    fields->addWidget(label);
    fields->addWidget(m_cboLang, 1);
    layOutWithButtons(fields, u"CmdOK"_s, u"cmdCancel"_s, 12);
    caption(Texts);
    m_cboLang->setCurrentIndex(language < LanguageCount ? language : English);
}

Language LanguageForm::chosenLanguage() const
{
    const int chosen = m_cboLang->currentIndex();
    return chosen >= 0 && chosen < LanguageCount ? Language(chosen) : language();
}

} // namespace wr
