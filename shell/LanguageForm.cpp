#include "shell/LanguageForm.h"

#include "core/AppState.h"
#include "core/Language.h"
#include "shell/AppIcon.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace wr {

LanguageForm::LanguageForm(QWidget *parent)
    : QDialog(parent)
    , m_lblLang(new QLabel(this))
    , m_cboLang(new QComboBox(this))
    , m_cmdOK(new QPushButton(this))
    , m_cmdCancel(new QPushButton(this))
{
    setObjectName(QStringLiteral("LanguageForm"));
    m_lblLang->setObjectName(QStringLiteral("lblLang"));
    m_cboLang->setObjectName(QStringLiteral("cboLang"));
    m_cmdOK->setObjectName(QStringLiteral("CmdOK"));
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    setWindowIcon(AppIcon());
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    setWindowTitle(TextFor(u"Language File Setup"_s, u"语言设置"_s, u"語言設置"_s));
    m_lblLang->setText(TextFor(u"Language Mode"_s, u"语言模式"_s, u"語言模式"_s));
    m_cmdOK->setText(TextFor(u"OK"_s, u"确定"_s, u"確定"_s));
    m_cmdCancel->setText(TextFor(u"Cancel"_s, u"取消"_s, u"取消"_s));
    // The list index is the language index.
    m_cboLang->addItem(TextFor(u"English"_s, u"英文"_s, u"英文"_s));
    m_cboLang->addItem(TextFor(u"Simplified Chinese"_s, u"简体中文"_s, u"簡體中文"_s));
    m_cboLang->addItem(TextFor(u"Traditional Chinese"_s, u"繁体中文"_s, u"繁體中文"_s));
    m_cboLang->setCurrentIndex(app().LanguageIndex < LanguageCount ? app().LanguageIndex : 0);
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
    if (chosen >= 0 && chosen < LanguageCount && chosen != app().LanguageIndex)
        app().LanguageIndex = static_cast<quint8>(chosen);
    accept();
}

} // namespace wr
