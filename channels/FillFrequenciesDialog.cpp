#include "channels/FillFrequenciesDialog.h"

#include "channels/CsvImportPreview.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr Caption Captions[]{
    {u"FillFrequenciesDialog", {u"Fill Frequencies", u"填充频率", u"填入頻率"}},
    {u"lblStart", {u"Start frequency (MHz):", u"起始频率 (MHz)：", u"起始頻率 (MHz)："}},
    {u"lblStep", {u"Step (kHz):", u"步进 (kHz)：", u"步進 (kHz)："}},
    {u"lblChannelsCaption", {u"Channels:", u"信道：", u"信道："}},
    {u"lblFirstCaption", {u"First:", u"第一个：", u"第一個："}},
    {u"lblLastCaption", {u"Last:", u"最后一个：", u"最後一個："}},
    {u"cmdOK", Words::OK},
    {u"cmdCancel", Words::Cancel},
};
constexpr FieldTable Texts{.captions = Captions};

constexpr Text ChannelsText{u"%1 (%2 in all)", u"%1（共 %2 个）", u"%1（共 %2 個）"};
constexpr Text ValueText{u"%1 MHz (channel %2)", u"%1 MHz（信道 %2）", u"%1 MHz（信道 %2）"};
constexpr Text OutsideText{u"Outside the receive bands, moved to a band edge: %1", u"超出接收频段，移至频段边缘：%1",
                           u"超出接收頻段，移至頻段邊緣：%1"};
constexpr Text RasterText{u"Moved onto the channel raster: %1", u"调整到频率栅格：%1", u"調整到頻率柵格：%1"};
constexpr Text NothingMovedText{u"Every value lies in the receive bands, on the raster.", u"所有值都在接收频段内、频率栅格上。",
                                u"所有值都在接收頻段內、頻率柵格上。"};
const QString NoValue = u"—"_s;

} // namespace

FillFrequenciesDialog::FillFrequenciesDialog(const QList<int> &channels, const QString &start,
                                             const BandLimitArray &limits, Language language, QWidget *parent)
    : FormDialog(language, parent)
    , m_channels(channels)
    , m_limits(limits)
{
    setObjectName(u"FillFrequenciesDialog"_s);
    m_start = makeControl<QLineEdit>(u"txtStart"_s);
    m_start->setValidator(new QRegularExpressionValidator(QRegularExpression(u"\\d{0,3}(\\.\\d{0,5})?"_s), m_start));
    m_start->setText(start);
    m_step = makeControl<QLineEdit>(u"txtStep"_s);
    m_step->setValidator(new QRegularExpressionValidator(QRegularExpression(u"-?\\d{0,4}(\\.\\d{0,2})?"_s), m_step));
    m_step->setText(u"12.5"_s); // the usual channel spacing

    auto *form = new QFormLayout;
    const auto addRow = [&](const QString &caption, QWidget *field) {
        auto *label = makeControl<QLabel>(caption);
        label->setBuddy(field);
        form->addRow(label, field);
    };
    addRow(u"lblStart"_s, m_start);
    addRow(u"lblStep"_s, m_step);
    auto *range = makeControl<QLabel>(u"lblChannels"_s);
    range->setText(ChannelsText.in(language).arg(channelRanges(channels)).arg(channels.size()));
    addRow(u"lblChannelsCaption"_s, range);
    m_first = makeControl<QLabel>(u"lblFirst"_s);
    addRow(u"lblFirstCaption"_s, m_first);
    m_last = makeControl<QLabel>(u"lblLast"_s);
    addRow(u"lblLastCaption"_s, m_last);
    // Room for the widest value, so the dialog keeps its size while typing.
    const int valueWidth = fontMetrics().horizontalAdvance(ValueText.in(language).arg(u"000.00000"_s).arg(128));
    m_first->setMinimumWidth(valueWidth);
    m_moved = makeControl<QLabel>(u"lblMoved"_s);
    m_moved->setWordWrap(true);
    m_moved->setMinimumHeight(2 * fontMetrics().lineSpacing());
    form->addRow(m_moved);

    m_ok = layOutWithButtons(form, u"cmdOK"_s, u"cmdCancel"_s).ok;
    caption(Texts);
    connect(m_start, &QLineEdit::textChanged, this, &FillFrequenciesDialog::preview);
    connect(m_step, &QLineEdit::textChanged, this, &FillFrequenciesDialog::preview);
    preview();
}

void FillFrequenciesDialog::preview()
{
    const Language language = this->language();
    m_series = frequencySeries(m_start->text(), m_step->text(), int(m_channels.size()), m_limits);
    m_ok->setEnabled(m_series && !m_channels.isEmpty());
    if (!m_ok->isEnabled()) {
        m_first->setText(NoValue);
        m_last->setText(NoValue);
        m_moved->clear();
        return;
    }
    const QString &first = m_series->values.front();
    m_first->setText(ValueText.in(language).arg(first).arg(m_channels.front()));
    m_last->setText(ValueText.in(language).arg(m_series->values.back()).arg(m_channels.back()));
    QStringList moved;
    if (m_series->outsideBands > 0)
        moved << OutsideText.in(language).arg(m_series->outsideBands);
    if (m_series->offRaster > 0)
        moved << RasterText.in(language).arg(m_series->offRaster);
    m_moved->setText(moved.isEmpty() ? NothingMovedText.in(language) : moved.join(u'\n'));
}

} // namespace wr
