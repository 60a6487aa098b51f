#include "shell/LanguageForm.h"

#include "core/Language.h"
#include "shell/AppIcon.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace wr {

LanguageForm::LanguageForm(int language, QWidget *parent)
    : QDialog(parent)
    , m_lblLang(new QLabel(this))
    , m_cboLang(new QComboBox(this))
    , m_cmdOK(new QPushButton(this))
    , m_cmdCancel(new QPushButton(this))
    , m_chosen(language)
{
    setObjectName(QStringLiteral("LanguageForm"));
    m_lblLang->setObjectName(QStringLiteral("lblLang"));
    m_cboLang->setObjectName(QStringLiteral("cboLang"));
    m_cmdOK->setObjectName(QStringLiteral("CmdOK"));
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    setWindowIcon(AppIcon());
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    setWindowTitle(Text(u"Language File Setup", u"语言设置", u"語言設置").in(language));
    m_lblLang->setText(Text(u"Language Mode", u"语言模式", u"語言模式").in(language));
    m_cmdOK->setText(Words::OK.in(language));
    m_cmdCancel->setText(Words::Cancel.in(language));
    // The list index is the language index.
    m_cboLang->addItem(Text(u"English", u"英文", u"英文").in(language));
    m_cboLang->addItem(Text(u"Simplified Chinese", u"简体中文", u"簡體中文").in(language));
    m_cboLang->addItem(Text(u"Traditional Chinese", u"繁体中文", u"繁體中文").in(language));
    m_cboLang->setCurrentIndex(language >= 0 && language < LanguageCount ? language : 0);
    m_cboLang->setMinimumContentsLength(18);
    m_lblLang->setBuddy(m_cboLang);

    auto *fields = new QHBoxLayout;
    fields->addWidget(m_lblLang);
    fields->addWidget(m_cboLang, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdCancel);
    auto *layout = new QGridLayout(this);
    layout->addLayout(fields, 0, 0);
    layout->setRowMinimumHeight(1, 12);
    layout->addLayout(buttons, 2, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    m_cmdOK->setDefault(true);
    connect(m_cmdOK, &QPushButton::clicked, this, &LanguageForm::CmdOK_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void LanguageForm::CmdOK_Click()
{
    const int chosen = m_cboLang->currentIndex();
    if (chosen >= 0 && chosen < LanguageCount)
        m_chosen = chosen;
    accept();
}

} // namespace wr
