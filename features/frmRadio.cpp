#include "features/frmRadio.h"

#include "features/FmRadio.h"
#include "ui/Accessible.h"
#include "ui/MessageBox.h"
#include "ui/Twips.h"

#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr int RowCount = frmRadio::FirstChannelRow + fm::ChannelCount;
constexpr int ColumnWidths[]{twipsToPixels(700), twipsToPixels(1480)};
constexpr int RowHeight = twipsToPixels(320);
// Rows in sight at once; the grid scrolls to the others.
constexpr int VisibleRows = 12;

constexpr Text RadioChannels{u"Radio CH", u"收音机信道", u"收機音信道"};
constexpr Caption Captions[]{
    {u"frmRadio", {u"Radio Setup", u"收音机设置", u"收音機設置"}},
    {u"Frame1", {u"Radio", u"收音机", u"收音機"}},
    {u"Frame2", RadioChannels},
    {u"CmdOK", Words::OK},
    {u"CmdCannel", Words::Cancel},
};
constexpr Caption SpokenNames[]{{u"MSRadioGrid", RadioChannels}, {u"txtRadio", fm::FrequencyHeader}};
constexpr FieldTable Fields{.captions = Captions, .spokenNames = SpokenNames};

// What a screen reader says on a row's cells: "Channel 5" on its name, and
// on its frequency "Channel 5, 88.00 megahertz" or "Channel 5, empty".
constexpr Text SpokenChannel{u"Channel %1", u"信道 %1", u"信道 %1"};
constexpr Text SpokenFrequency{u"%1, %2 megahertz", u"%1，%2 兆赫", u"%1，%2 兆赫"};
constexpr Text SpokenEmpty{u"%1, empty", u"%1，空", u"%1，空"};

constexpr Text OutOfRange{u"Frequency is out of range.", u"频率超出范围。", u"頻率超出範圍"};

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

frmRadio::frmRadio(MemoryImage &image, Language language, QWidget *parent)
    : FieldDialog(image, language, parent)
    , m_grid(new QTableWidget(RowCount, 2))
    , m_text(new QLineEdit)
{
    setObjectName(u"frmRadio"_s);
    m_grid->setObjectName(u"MSRadioGrid"_s);
    m_text->setObjectName(u"txtRadio"_s);

    // The "Radio" frame holds the channel frame and the buttons.
    auto *radio = new QGroupBox;
    radio->setObjectName(u"Frame1"_s);
    auto *channels = new QGroupBox;
    channels->setObjectName(u"Frame2"_s);
    auto *channelsLayout = new QVBoxLayout(channels);
    channelsLayout->addWidget(m_grid, 0, Qt::AlignHCenter);
    auto *radioLayout = new QVBoxLayout(radio);
    radioLayout->addWidget(channels);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(radio);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // Made once the grid is in the dialog, the buttons follow it in the Tab order.
    const ButtonRow buttons = makeButtonRow(u"CmdOK"_s, u"CmdCannel"_s);
    radioLayout->addLayout(buttons.layout);
    m_ok = buttons.ok;

    prepareEditedGrid(m_grid);
    m_grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_grid->verticalHeader()->hide();
    m_text->setAlignment(Qt::AlignCenter);

    CellEditRules &rules = *this;
    m_editor = std::make_unique<CellEditor>(m_grid, rules);
    m_editor->addEditor(m_text);

    Form_Load();
    bindFields(Fields);
}

frmRadio::~frmRadio() = default;

QString frmRadio::cellText(int row, int column) const
{
    const QTableWidgetItem *item = m_grid->item(row, column);
    return item ? item->text() : QString();
}

void frmRadio::setCell(int row, int column, const QString &text)
{
    QTableWidgetItem *item = m_grid->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setTextAlignment(Qt::AlignCenter);
        m_grid->setItem(row, column, item);
    }
    item->setText(text);
    if (row >= VfoRow)
        speakRow(row);
}

void frmRadio::speakRow(int row)
{
    QTableWidgetItem *name = m_grid->item(row, 0);
    if (!name)
        return;
    const QString spokenName = row == VfoRow ? name->text() : SpokenChannel.in(language()).arg(name->text());
    name->setData(Qt::AccessibleTextRole, spokenName);
    if (QTableWidgetItem *frequency = m_grid->item(row, FrequencyColumn)) {
        const QString text = frequency->text();
        frequency->setData(Qt::AccessibleTextRole, text.isEmpty() ? SpokenEmpty.in(language()).arg(spokenName)
                                                                  : SpokenFrequency.in(language()).arg(spokenName, text));
    }
}

void frmRadio::Form_Load()
{
    const QString headers[]{fm::ChannelHeader.in(language()), fm::FrequencyHeader.in(language())};
    m_grid->setHorizontalHeaderLabels({headers[0], headers[1]});
    // Row 0 carries the captions as the grid's first row; the column header
    // shows them fixed above the rows.
    setCell(0, 0, headers[0]);
    setCell(0, FrequencyColumn, headers[1]);
    m_grid->setRowHidden(0, true);
    setCell(VfoRow, 0, fm::VfoName.in(language()));
    for (int channel = 0; channel < fm::ChannelCount; ++channel)
        setCell(FirstChannelRow + channel, 0, QString::number(channel));
    const QColor fixedBackground = m_grid->palette().color(QPalette::Button);
    for (int row = VfoRow; row < RowCount; ++row)
        m_grid->item(row, 0)->setBackground(fixedBackground);

    const fm::Texts texts = fm::load(image());
    setCell(VfoRow, FrequencyColumn, texts.vfo);
    for (int channel = 0; channel < fm::ChannelCount; ++channel)
        setCell(FirstChannelRow + channel, FrequencyColumn, texts.channels[std::size_t(channel)]);

    fitGrid();
    m_grid->setCurrentCell(VfoRow, FrequencyColumn);
    keepCurrentCell(m_grid);
}

// The laid-out widths, widened where a caption or a frequency would not fit;
// rows as high as the editor needs; the grid as large as its columns and
// VisibleRows rows.
void frmRadio::fitGrid()
{
    constexpr int Padding = 14;
    const QFontMetrics cells(m_grid->font());
    const QFontMetrics headers(m_grid->horizontalHeader()->font());
    const int widest[]{std::max(cells.horizontalAdvance(fm::VfoName.in(language())), cells.horizontalAdvance(u"00"_s)),
                       cells.horizontalAdvance(u"000.00"_s)};
    int width = 0;
    for (int column = 0; column < 2; ++column) {
        const QString caption = cellText(0, column);
        const int wanted = std::max({ColumnWidths[column], widest[column] + Padding,
                                     headers.horizontalAdvance(caption) + Padding});
        m_grid->setColumnWidth(column, wanted);
        width += wanted;
    }
    const int rowHeight = std::max({RowHeight, cells.height() + 6, m_text->sizeHint().height()});
    m_grid->verticalHeader()->setDefaultSectionSize(rowHeight);

    const int frame = 2 * m_grid->frameWidth();
    const int scrollBar = m_grid->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_grid);
    const int header = m_grid->horizontalHeader()->sizeHint().height();
    m_grid->setFixedSize(width + scrollBar + frame, header + VisibleRows * rowHeight + frame);
}

void frmRadio::StartCellEdit()
{
    m_editor->open();
}

void frmRadio::storeFields()
{
    m_editor->commit();
    FieldDialog::storeFields();
    fm::Texts texts;
    texts.vfo = cellText(VfoRow);
    for (int channel = 0; channel < fm::ChannelCount; ++channel)
        texts.channels[std::size_t(channel)] = cellText(FirstChannelRow + channel);
    fm::save(image(), texts);
}

// A click or a key on a row's name edits the row's frequency.
QModelIndex frmRadio::editableCell(const QModelIndex &cell) const
{
    if (cell.row() < VfoRow)
        return cell;
    return cell.siblingAtColumn(FrequencyColumn);
}

QWidget *frmRadio::editorFor(const QModelIndex &cell, const QString &text)
{
    if (cell.row() < VfoRow || cell.column() != FrequencyColumn)
        return nullptr;
    m_text->setText(text);
    return m_text;
}

// A digit typed on the grid opens the editor holding it.
std::optional<QChar> frmRadio::startingCharacter(const QModelIndex &, QChar typed) const
{
    if (isAsciiDigit(typed))
        return typed;
    return std::nullopt;
}

std::optional<QChar> frmRadio::acceptedCharacter(const TypedKey &key) const
{
    if (isAsciiDigit(key.typed) || key.typed == u'.' || key.typed == u',')
        return key.typed;
    return std::nullopt;
}

void frmRadio::commit(const QModelIndex &cell, QWidget *, const QString &text)
{
    const fm::Entry entry = fm::entered(text, cellText(cell.row()));
    setCell(cell.row(), FrequencyColumn, entry.text);
    if (entry.outOfRange)
        MessageBox::show(this, QMessageBox::Warning, ModelName(), OutOfRange.in(language()));
}

// Enter moves down a row; from the last channel it moves on to OK.
QModelIndex frmRadio::cellAfterEnter(const QModelIndex &cell)
{
    if (cell.row() >= RowCount - 1) {
        m_ok->setFocus(Qt::TabFocusReason);
        return {};
    }
    return cell.siblingAtRow(cell.row() + 1).siblingAtColumn(FrequencyColumn);
}

} // namespace wr
