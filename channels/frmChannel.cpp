#include "channels/frmChannel.h"

#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QStringListModel>
#include <QTableWidget>
#include <QUndoStack>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <optional>

namespace wr {

namespace {

// Column widths and the header row's height as laid out.
constexpr std::array<int, frmChannel::ColumnCount> ColumnWidths = [] {
    constexpr std::array<int, frmChannel::ColumnCount> twips{750, 1250, 1250, 1300, 1300, 1200, 900, 1250, 1250};
    std::array<int, frmChannel::ColumnCount> pixels{};
    for (std::size_t column = 0; column < twips.size(); ++column)
        pixels[column] = twipsToPixels(twips[column]);
    return pixels;
}();
constexpr int HeaderHeight = twipsToPixels(500);

constexpr int HeaderPointSize = 10;
constexpr int NumberPointSize = 12;
const QColor HeaderColour(19, 58, 149);

// One notch of a standard mouse wheel.
constexpr int WheelNotch = 120;

static_assert(ChannelColumnCaptions.size() == frmChannel::ColumnCount);

// The words CboChannel1 offers in a list column, Off first where there is one.
QList<Text> columnChoices(int column)
{
    switch (column) {
    case frmChannel::ColPower:
        return {Words::High, Words::Low};
    case frmChannel::ColBandwidth:
        return {Words::Wide, Words::Narrow};
    case frmChannel::ColScanAdd:
        return {Words::Off, Words::On};
    case frmChannel::ColBcl:
        return {Words::Off, Words::Carrier, Words::OptSignal};
    default:
        return {};
    }
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// A typed tone brought onto something the radio can store: a CTCSS value in
// 60.0-259.9 Hz (kept as typed, in the list or not), a DCS code with three
// octal digits and a polarity, or no tone.
QString normaliseToneInput(const QString &text, int languageIndex)
{
    if (!text.isEmpty() && isAsciiDigit(text.front())) {
        constexpr int Scale = 6; // compare the typed value exactly, format in tenths
        const qint64 micro = freq::leadingNumber(text, Scale);
        qint64 tenths;
        if (micro < 60'000'000)
            tenths = 600;
        else if (micro >= 260'000'000)
            tenths = 2599;
        else
            tenths = (micro + 50'000) / 100'000; // a half away from zero
        return QStringLiteral("%1.%2").arg(tenths / 10).arg(tenths % 10);
    }
    if (text.startsWith(u'D')) {
        const qint64 number = std::clamp<qint64>(freq::leadingNumber(QStringView(text).mid(1), 0), 0, 777);
        QString digits = QStringLiteral("%1").arg(number, 3, 10, QChar(u'0'));
        for (QChar &digit : digits) {
            if (digit > u'7')
                digit = u'7';
        }
        const QChar polarity = text.endsWith(u'I') ? u'I' : u'N';
        return u'D' + digits + polarity;
    }
    return Words::None.in(languageIndex);
}

// While the grid has the focus, one notch of the wheel pages the list up or
// down, as Page Up and Page Down would; anything else (a touchpad's small
// steps, a notch with a key or button held) scrolls as usual.
class WheelPager : public QObject
{
public:
    explicit WheelPager(QTableWidget *grid)
        : QObject(grid)
        , m_grid(grid)
    {
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel)
            return QObject::eventFilter(watched, event);
        const auto *wheel = static_cast<QWheelEvent *>(event);
        if (wheel->modifiers() != Qt::NoModifier || wheel->buttons() != Qt::NoButton
            || wheel->angleDelta().x() != 0)
            return false;
        const int delta = wheel->angleDelta().y();
        if (delta != WheelNotch && delta != -WheelNotch)
            return false;
        const auto key = delta > 0 ? Qt::Key_PageUp : Qt::Key_PageDown;
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(m_grid, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        QCoreApplication::sendEvent(m_grid, &release);
        return true; // one page a notch, not a page plus the view's own three lines
    }

private:
    QTableWidget *m_grid;
};

// The grid's column header. Qt's header measures each caption in bold, the
// look of a highlighted section; this grid never highlights one, so captions
// are measured in the font they are drawn in. That also spares loading bold
// fonts (a Chinese one included) only to measure.
class ChannelHeader final : public QHeaderView
{
public:
    explicit ChannelHeader(QWidget *parent)
        : QHeaderView(Qt::Horizontal, parent)
    {
    }

protected:
    QSize sectionSizeFromContents(int logicalIndex) const override
    {
        const QVariant hint = model()->headerData(logicalIndex, orientation(), Qt::SizeHintRole);
        if (hint.isValid())
            return hint.toSize();
        QStyleOptionHeader option;
        initStyleOption(&option);
        option.section = logicalIndex;
        const QVariant font = model()->headerData(logicalIndex, orientation(), Qt::FontRole);
        option.fontMetrics = QFontMetrics(font.canConvert<QFont>() ? font.value<QFont>() : this->font());
        option.text = model()->headerData(logicalIndex, orientation(), Qt::DisplayRole).toString();
        return style()->sizeFromContents(QStyle::CT_HeaderSection, &option, QSize(), this);
    }
};

// Filling the grid touches about a thousand cells, and the view would work
// out each one's place on the screen as it changes. While a QuietFill lives
// the model keeps still; at its end the view hears of the whole grid once.
// Only cell contents may change under it, never the number of rows or
// columns.
class QuietFill
{
public:
    explicit QuietFill(QTableWidget *grid)
        : m_grid(grid)
        , m_blocker(grid->model())
    {
    }
    QuietFill(const QuietFill &) = delete;
    QuietFill &operator=(const QuietFill &) = delete;

    ~QuietFill()
    {
        m_blocker.unblock();
        QAbstractItemModel *model = m_grid->model();
        if (model->rowCount() > 0 && model->columnCount() > 0)
            Q_EMIT model->dataChanged(model->index(0, 0), model->index(model->rowCount() - 1, model->columnCount() - 1));
    }

private:
    QTableWidget *m_grid;
    QSignalBlocker m_blocker;
};

} // namespace

frmChannel::frmChannel(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
{
    setObjectName(QStringLiteral("frmChannel"));
    resize(OpeningSize);

    m_grid = new QTableWidget(this);
    m_grid->setObjectName(QStringLiteral("ChannelGrid"));
    m_grid->setHorizontalHeader(new ChannelHeader(m_grid));
    m_grid->horizontalHeader()->setTextElideMode(Qt::ElideNone);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_grid->setTabKeyNavigation(false);
    m_grid->setWordWrap(false);
    m_grid->setCornerButtonEnabled(false);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setSectionsClickable(false);
    m_grid->horizontalHeader()->setHighlightSections(false);
    m_grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_grid);

    CellEditRules &rules = *this;
    m_editor = std::make_unique<CellEditor>(m_grid, rules);
    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("TxtChannel"));
    m_editor->addEditor(m_text);
    for (int index = 0; index < 2; ++index) {
        m_combo[index] = new QComboBox;
        m_combo[index]->setObjectName(QStringLiteral("CboChannel%1").arg(index));
    }
    // Tones may be typed (CboChannel0); the list columns offer their words
    // only (CboChannel1).
    m_combo[0]->setEditable(true);
    m_combo[0]->setInsertPolicy(QComboBox::NoInsert);
    m_combo[0]->setCompleter(nullptr);
    m_combo[0]->setMaxVisibleItems(16);
    // The 261 tones sit in a plain string list: a combo's own item model
    // would build an item object for each of them, a cost paid at every
    // start-up for an editor that opens only when a tone is edited. Entry 0,
    // the no-tone word, follows the language when the editor opens.
    m_combo[0]->setModel(new QStringListModel(BuildToneTable(language()), m_combo[0]));
    for (QComboBox *combo : m_combo)
        m_editor->addEditor(combo);

    m_grid->installEventFilter(this);
    m_grid->viewport()->installEventFilter(this);
    m_wheelPager = new WheelPager(m_grid);
    connect(m_grid, &QTableWidget::currentCellChanged, this, [this] { SyncGridCursor(); });
    buildTools();

    RefreshChannelOP();
    RefreshChannel();
}

frmChannel::~frmChannel() = default;

QTableWidget *frmChannel::grid() const
{
    return m_grid;
}

int frmChannel::language() const
{
    return m_state.LanguageIndex;
}

QString frmChannel::headerText(int column, int languageIndex)
{
    if (column < 0 || column >= ColumnCount)
        return {};
    return ChannelColumnCaptions[static_cast<std::size_t>(column)].in(languageIndex);
}

QString frmChannel::cellText(int row, int column) const
{
    const QTableWidgetItem *item = m_grid->item(row, column);
    return item ? item->text() : QString();
}

int frmChannel::lastRow() const
{
    return std::min(m_grid->rowCount() - 1, int(ChannelRecord::ChannelCount));
}

void frmChannel::setCell(int row, int column, const QString &text)
{
    QTableWidgetItem *item = m_grid->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        m_grid->setItem(row, column, item);
    }
    item->setText(text);
}

ChannelTexts frmChannel::rowTexts(int row) const
{
    return {cellText(row, ColRx),    cellText(row, ColTx),    cellText(row, ColDecode),
            cellText(row, ColEncode), cellText(row, ColPower), cellText(row, ColBandwidth),
            cellText(row, ColScanAdd), cellText(row, ColBcl)};
}

void frmChannel::writeRow(int row, const ChannelTexts &texts)
{
    setCell(row, ColRx, texts.rx);
    setCell(row, ColTx, texts.tx);
    setCell(row, ColDecode, texts.decode);
    setCell(row, ColEncode, texts.encode);
    setCell(row, ColPower, texts.power);
    setCell(row, ColBandwidth, texts.bandwidth);
    setCell(row, ColScanAdd, texts.scanAdd);
    setCell(row, ColBcl, texts.bcl);
}

void frmChannel::RefreshChannelOP()
{
    m_editor->cancel();
    // The list always has its 128 channel rows; a stored count outside that
    // would leave channels out of reach.
    const int rows = std::clamp(int(m_state.ChannelGridRows), 2, int(RowCount));
    m_grid->setRowCount(rows);
    m_grid->setColumnCount(ColumnCount);

    const QColor fixedBackground = m_grid->palette().color(QPalette::Button);
    QFont numberFont = m_grid->font();
    numberFont.setPointSize(NumberPointSize);
    {
        const QuietFill quiet(m_grid);
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < ColumnCount; ++column) {
                if (!m_grid->item(row, column))
                    setCell(row, column, QString());
            }
        }
        for (int row = 1; row < rows; ++row) {
            QTableWidgetItem *number = m_grid->item(row, ColNumber);
            number->setText(QString::number(row));
            number->setFont(numberFont);
            number->setForeground(QColor(Qt::blue));
            number->setBackground(fixedBackground);
            number->setTextAlignment(Qt::AlignCenter);
        }
    }
    // Row 0 carries the captions; the horizontal header shows them fixed
    // above the rows.
    m_grid->setRowHidden(0, true);

    const int rowHeight = std::max({QFontMetrics(numberFont).height() + 6, m_combo[1]->sizeHint().height(),
                                    m_text->sizeHint().height()});
    m_grid->verticalHeader()->setDefaultSectionSize(rowHeight);

    m_grid->setCurrentCell(1, ColRx);
    m_state.ChannelCursor = 1;
    m_state.GridColumn = 1;
}

void frmChannel::SetupChannelGrid()
{
    setWindowTitle(QString());
    QFont headerFont = m_grid->font();
    headerFont.setPointSize(HeaderPointSize);
    m_grid->horizontalHeader()->setFont(headerFont);
    for (int column = 0; column < ColumnCount; ++column) {
        const QString caption = headerText(column, language());
        setCell(0, column, caption);
        QTableWidgetItem *header = m_grid->horizontalHeaderItem(column);
        if (!header) {
            header = new QTableWidgetItem;
            m_grid->setHorizontalHeaderItem(column, header);
        }
        header->setText(caption);
        header->setFont(headerFont);
        header->setForeground(HeaderColour);
        // A long caption breaks between its words rather than widening its
        // column past the window.
        header->setTextAlignment(Qt::Alignment::fromInt(Qt::AlignCenter | Qt::TextWordWrap));
    }
    fitColumns();
    captionTools();
}

// Column widths as laid out, widened where a value of the current
// language or a word of a caption would not fit, so no text is cut off and
// each editor shows its text whole over its cell. A caption wider than its
// column goes onto two lines (the header grows if they need more than row
// 0's height).
void frmChannel::fitColumns()
{
    QHeaderView *header = m_grid->horizontalHeader();
    const QFontMetrics headerMetrics(header->font());
    const QFontMetrics cellMetrics(m_grid->font());
    QFont numberFont = m_grid->font();
    numberFont.setPointSize(NumberPointSize);
    const QFontMetrics numberMetrics(numberFont);
    constexpr int Padding = 14;
    const int headerMargin = header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    const int headerPadding = 2 * headerMargin + 4;

    int captionHeight = headerMetrics.height();
    for (int column = 0; column < ColumnCount; ++column) {
        int width = ColumnWidths[static_cast<std::size_t>(column)];
        const QString caption = headerText(column, language());
        for (const QString &word : caption.split(u' ', Qt::SkipEmptyParts))
            width = std::max(width, headerMetrics.horizontalAdvance(word) + headerPadding);
        switch (column) {
        case ColNumber:
            width = std::max(width, numberMetrics.horizontalAdvance(QStringLiteral("128")) + Padding);
            break;
        case ColRx:
        case ColTx:
            width = std::max(width, cellMetrics.horizontalAdvance(QStringLiteral("000.00000")) + Padding);
            break;
        case ColDecode:
        case ColEncode:
            width = std::max(width, CellEditor::comboWidthFor(m_combo[0], {QStringLiteral("D000N"),
                                                                           Words::None.in(language())}));
            break;
        default: {
            QStringList words;
            for (const Text &word : columnChoices(column))
                words.append(word.in(language()));
            width = std::max(width, CellEditor::comboWidthFor(m_combo[1], words));
            break;
        }
        }
        m_grid->setColumnWidth(column, width);
        const QRect wrapped = headerMetrics.boundingRect(QRect(0, 0, width - headerPadding, 1000),
                                                         Qt::AlignCenter | Qt::TextWordWrap, caption);
        captionHeight = std::max(captionHeight, wrapped.height());
    }
    // Row 0's height, or the captions' if they need more.
    header->setFixedHeight(std::max(HeaderHeight, captionHeight + 2 * headerMargin));
}

int frmChannel::gridWidthLacking() const
{
    int columns = 0;
    for (int column = 0; column < m_grid->columnCount(); ++column)
        columns += m_grid->columnWidth(column);
    return std::max(0, columns - m_grid->viewport()->width());
}

void frmChannel::RefreshChannel()
{
    SetupChannelGrid();
    RefreshData();
}

void frmChannel::RefreshData()
{
    // The image is the truth now; an editor still open and the history of
    // edits belong to the old data.
    m_editor->cancel();
    m_undo->clear();
    const int rows = lastRow();
    const QuietFill quiet(m_grid);
    for (int channel = 1; channel <= rows; ++channel)
        writeRow(channel, ReadChannelTexts(m_state.image, channel, language()));
}

void frmChannel::SaveData()
{
    m_editor->commit();
    const int rows = lastRow();
    for (int channel = 1; channel <= rows; ++channel)
        SaveChannel(m_state.image, channel, rowTexts(channel));
}

void frmChannel::setChannelRx(int channel, const QString &text)
{
    if (channel < 1 || channel > lastRow())
        return;
    if (text.isEmpty()) {
        writeRow(channel, ChannelTexts{});
        return;
    }
    const QString rx = NormaliseRxFreq(text, m_state.BandLimits);
    setCell(channel, ColRx, rx);
    if (!cellText(channel, ColEncode).isEmpty())
        return;

    // A new channel: the transmit side follows the receive frequency, and the
    // record gets its defaults at once.
    const QString none = Words::None.in(language());
    setCell(channel, ColTx, NormaliseTxFreq(rx, m_state.BandLimits));
    setCell(channel, ColDecode, none);
    setCell(channel, ColEncode, none);
    setCell(channel, ColPower, Words::High.in(language()));
    setCell(channel, ColBandwidth, Words::Wide.in(language()));
    setCell(channel, ColScanAdd, Words::On.in(language()));
    setCell(channel, ColBcl, Words::Off.in(language()));
    CreateChannel(m_state.image, channel);
}

void frmChannel::setChannelTx(int channel, const QString &text)
{
    if (channel < 1 || channel > lastRow())
        return;
    if (text.isEmpty()) {
        setCell(channel, ColTx, QString());
        setCell(channel, ColEncode, QString());
        return;
    }
    setCell(channel, ColTx, NormaliseTxFreq(text, m_state.BandLimits));
    if (cellText(channel, ColEncode).isEmpty())
        setCell(channel, ColEncode, Words::None.in(language()));
}

void frmChannel::TxtChannel_Validate()
{
    if (m_editor->openEditor() == m_text)
        m_editor->commit();
}

void frmChannel::CboChannel_Validate(int index)
{
    if (index >= 0 && index < 2 && m_editor->openEditor() == m_combo[index])
        m_editor->commit();
}

void frmChannel::commitOpenEditor()
{
    m_editor->commit();
    m_grid->setFocus(Qt::OtherFocusReason);
}

void frmChannel::SyncGridCursor()
{
    m_state.ChannelCursor = static_cast<quint8>(std::max(0, m_grid->currentRow()));
    m_state.GridColumn = static_cast<quint8>(std::max(0, m_grid->currentColumn()));
}

// An empty row can only be started by its receive frequency, and the encode
// tone of a row without a transmit frequency is reached through that
// frequency.
QModelIndex frmChannel::editableCell(const QModelIndex &cell) const
{
    const int row = cell.row();
    if (row < 1)
        return cell;
    if (cellText(row, ColRx).isEmpty())
        return cell.siblingAtColumn(ColRx);
    if (cell.column() == ColEncode && cellText(row, ColTx).isEmpty())
        return cell.siblingAtColumn(ColTx);
    return cell;
}

QWidget *frmChannel::editorFor(const QModelIndex &cell, const QString &text)
{
    if (cell.row() < 1 || cell.row() > lastRow())
        return nullptr;
    switch (cell.column()) {
    case ColRx:
    case ColTx:
        m_text->setMaxLength(9);
        m_text->setText(text);
        return m_text;
    case ColDecode:
    case ColEncode:
        if (text.isEmpty())
            return nullptr; // a tone of a channel without that side: nothing to edit
        if (m_combo[0]->count() > 0)
            m_combo[0]->setItemText(0, Words::None.in(language()));
        m_combo[0]->setEditText(text);
        return m_combo[0];
    case ColPower:
    case ColBandwidth:
    case ColScanAdd:
    case ColBcl:
        m_combo[1]->clear();
        for (const Text &word : columnChoices(cell.column()))
            m_combo[1]->addItem(word.in(language()));
        m_combo[1]->setCurrentIndex(m_combo[1]->findText(text));
        return m_combo[1];
    default:
        return nullptr;
    }
}

// A digit or point typed on a frequency cell opens its editor holding it.
std::optional<QChar> frmChannel::startingCharacter(const QModelIndex &cell, QChar typed) const
{
    if ((cell.column() == ColRx || cell.column() == ColTx) && (isAsciiDigit(typed) || typed == u'.'))
        return typed;
    return std::nullopt;
}

// Frequencies take digits, the point and the comma. Tones take what can
// still become "88.5" or "D023N": up to five characters of a number with one
// point, or D and three digits, then N or I; a list takes no typing at all.
std::optional<QChar> frmChannel::acceptedCharacter(const TypedKey &key) const
{
    const QChar typed = key.typed;
    if (key.editor == m_text) {
        if (isAsciiDigit(typed) || typed == u'.' || typed == u',')
            return typed;
        return std::nullopt;
    }
    if (key.editor != m_combo[0])
        return std::nullopt;

    const QString &text = key.text;
    const bool dcs = text.startsWith(u'D');
    if (isAsciiDigit(typed)) {
        if (key.wholeSelected || text.size() < (dcs ? 4 : 5))
            return typed;
        return std::nullopt;
    }
    if (typed == u'D' || typed == u'd') {
        if (text.isEmpty() || key.wholeSelected)
            return QChar(u'D');
        return std::nullopt;
    }
    if (typed == u'.') {
        if (text.isEmpty() || text.size() >= 4 || text.contains(u'.'))
            return std::nullopt;
        return typed;
    }
    if (typed == u'N' || typed == u'n' || typed == u'I' || typed == u'i') {
        if (dcs && text.size() == 4)
            return typed.toUpper();
        return std::nullopt;
    }
    return std::nullopt;
}

void frmChannel::commit(const QModelIndex &cell, QWidget *editor, const QString &text)
{
    const int row = cell.row();
    const int column = cell.column();
    if (row < 1 || row > lastRow())
        return;
    recordEdit(row, [&] {
        if (editor == m_text) {
            if (column == ColRx)
                setChannelRx(row, text);
            else if (column == ColTx)
                setChannelTx(row, text);
        } else if (editor == m_combo[0]) {
            setCell(row, column, normaliseToneInput(text, language()));
        } else {
            setCell(row, column, text);
        }
    });
}

// Enter in a frequency moves one column right. Enter in a list moves on
// along the row and from the last column to the next row, the last row
// wrapping to the first; the decode tone of a row without a transmit side
// skips the empty encode tone.
QModelIndex frmChannel::cellAfterEnter(const QModelIndex &cell)
{
    int row = cell.row();
    int column = cell.column();
    if (column == ColRx || column == ColTx) {
        ++column;
    } else if (column == ColDecode && cellText(row, ColEncode).isEmpty()) {
        column = ColPower;
    } else if (column >= ColumnCount - 1) {
        column = ColRx;
        row = row >= lastRow() ? 1 : row + 1;
    } else {
        ++column;
    }
    return cell.siblingAtRow(row).siblingAtColumn(column);
}

// Esc closes the frequency editor; in a list it only puts the cell's text
// back and the list stays open.
CellEditRules::Escape frmChannel::onEscape(QWidget *editor) const
{
    return editor == m_text ? Escape::Close : Escape::RevertText;
}

bool frmChannel::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    // The context menu opens on a right click without keys held (the
    // Shift+Ctrl+Alt right click is the memory map's gesture) or the menu
    // key, over the selected rows or the row clicked.
    if (type == QEvent::ContextMenu && (watched == m_grid || watched == m_grid->viewport())) {
        const auto *menu = static_cast<QContextMenuEvent *>(event);
        if (menu->modifiers() != Qt::NoModifier)
            return true;
        m_editor->commit();
        const bool mouse = menu->reason() == QContextMenuEvent::Mouse;
        const int row = mouse ? m_grid->rowAt(menu->pos().y()) : m_grid->currentRow();
        if (row >= 1 && !selectedChannels().contains(row))
            selectChannels({row});
        const QRect cell = m_grid->visualRect(m_grid->currentIndex());
        showToolMenu(mouse ? menu->globalPos() : m_grid->viewport()->mapToGlobal(cell.center()));
        return true;
    }
    if (watched == m_grid->viewport() && numberClick(event))
        return true;
    if (watched == m_grid) {
        if (type == QEvent::FocusIn)
            m_grid->viewport()->installEventFilter(m_wheelPager);
        else if (type == QEvent::FocusOut)
            m_grid->viewport()->removeEventFilter(m_wheelPager);
    } else if (watched == m_grid->viewport() && type == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const auto gesture = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier;
        if (mouse->button() == Qt::RightButton && (mouse->modifiers() & gesture) == gesture) {
            commitOpenEditor();
            SaveData();
            Q_EMIT memoryMapRequested();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmChannel::closeEvent(QCloseEvent *event)
{
    SaveData();
    QWidget::closeEvent(event);
}

} // namespace wr
