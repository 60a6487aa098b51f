#include "channels/ToneChoiceDialog.h"

#include "channels/ChannelTable.h"
#include "core/ToneCodec.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegularExpressionValidator>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr Caption Captions[]{
    {u"ToneChoiceDialog", {u"Set for Selected Channels", u"为所选信道设置", u"為所選信道設置"}},
    {u"cmdOK", Words::OK},
    {u"cmdCancel", Words::Cancel},
};
constexpr FieldTable Texts{.captions = Captions};

} // namespace

ToneChoiceDialog::ToneChoiceDialog(const Text &column, const QString &tone, Language language, QWidget *parent)
    : FormDialog(language, parent)
{
    setObjectName(u"ToneChoiceDialog"_s);
    auto *label = makeControl<QLabel>(u"lblTone"_s);
    label->setText(column.in(language) + (language == English ? u":"_s : u"："_s));
    m_tone = makeControl<QComboBox>(u"cboTone"_s);
    m_tone->setEditable(true);
    m_tone->setInsertPolicy(QComboBox::NoInsert);
    m_tone->setCompleter(nullptr);
    m_tone->setMaxVisibleItems(16);
    m_tone->addItems(BuildToneTable(language));
    // What can still become a tone: the no-tone word, up to 259.9, or D,
    // three octal digits and the polarity.
    const QString none = QRegularExpression::escape(Words::None.in(language));
    m_tone->setValidator(new QRegularExpressionValidator(
        QRegularExpression(u"%1|\\d{0,3}(\\.\\d?)?|[Dd][0-7]{0,3}[NnIi]?"_s.arg(none)), m_tone));
    m_tone->setEditText(tone);
    m_tone->setAccessibleName(column.in(language));
    label->setBuddy(m_tone);

    auto *row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(m_tone, 1);
    layOutWithButtons(row, u"cmdOK"_s, u"cmdCancel"_s);
    caption(Texts);
}

QString ToneChoiceDialog::tone() const
{
    return typedTone(m_tone->currentText().trimmed().toUpper(), language());
}

} // namespace wr
