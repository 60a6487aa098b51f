#include "channels/frmChannel.h"

#include "channels/ChannelBulkEdit.h"
#include "channels/ChannelFilterBar.h"
#include "channels/ChannelGridLook.h"
#include "channels/ChannelHistory.h"
#include "channels/ChannelModel.h"
#include "channels/ChannelSelection.h"
#include "core/AppState.h"
#include "core/Language.h"
#include "core/ToneCodec.h"
#include "ui/Accessible.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QComboBox>
#include <QFontMetrics>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QStyle>
#include <QStringListModel>
#include <QTableView>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <numeric>
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

static_assert(ChannelColumnCaptions.size() == frmChannel::ColumnCount);

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Name of a step of the history.
constexpr Text EditStep{u"Edit", u"编辑", u"編輯"};

// What a screen reader calls the list; its window caption stays empty.
constexpr Text ChannelListName{u"Channel list", u"信道列表", u"信道列表"};

} // namespace

frmChannel::frmChannel(AppState &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
{
    setObjectName(QStringLiteral("frmChannel"));
    resize(OpeningSize);

    m_model = new ChannelModel(this);
    m_history = new ChannelHistory(*m_model, m_state.image, this);
    m_history->setSelector([this](const QList<int> &channels) { selectChannels(channels); });

    // The filter line above the grid comes before it in the focus chain, so
    // it is made first and the grid joins the window after it; the grid's
    // own successor in the chain stays the widget after the list (Ctrl+Tab
    // leaves the grid for the tree).
    m_grid = new ChannelGridView;
    m_filter = new ChannelFilterBar(*m_model, m_grid, [this] { return lastChannel(); }, this);
    m_grid->setParent(this);
    m_grid->setObjectName(QStringLiteral("ChannelGrid"));
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(new NumberDelegate(m_grid));
    m_grid->setHorizontalHeader(new ChannelHeader(m_grid));
    m_grid->horizontalHeader()->setTextElideMode(Qt::ElideNone);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_grid->setTabKeyNavigation(false);
    m_grid->setWordWrap(false);
    m_grid->setCornerButtonEnabled(false);
    m_grid->verticalHeader()->hide();
    m_grid->horizontalHeader()->setSectionsClickable(false);
    m_grid->horizontalHeader()->setHighlightSections(false);
    m_grid->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    // A long caption breaks between its words rather than widening its
    // column past the window.
    m_grid->horizontalHeader()->setDefaultAlignment(Qt::Alignment::fromInt(Qt::AlignCenter | Qt::TextWordWrap));
    QPalette headerColours = m_grid->horizontalHeader()->palette();
    headerColours.setColor(QPalette::ButtonText, HeaderColour);
    m_grid->horizontalHeader()->setPalette(headerColours);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_filter);
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
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { SyncGridCursor(); });
    m_selection = std::make_unique<ChannelSelection>(m_grid, [this] { m_editor->commit(); });
    ChannelToolHost &host = *this;
    m_tools = new ChannelTools(host, *m_model, *m_history, m_state.BandLimits, m_grid);
    m_bulk = new ChannelBulkEdit(host, *m_model, *m_history, *m_editor, m_state.BandLimits, m_grid, m_tools->menu());
    for (QWidget *editor : std::initializer_list<QWidget *>{m_text, m_combo[0]->lineEdit(), m_combo[0], m_combo[1]})
        m_bulk->watchEditor(editor);
    connect(m_filter, &ChannelFilterBar::shownChanged, this, &frmChannel::channelsShown);

    openMenuByKeys(m_grid);
    RefreshChannelOP();
    RefreshChannel();
    keepCurrentCell(m_grid);
}

frmChannel::~frmChannel() = default;

QTableView *frmChannel::grid() const
{
    return m_grid;
}

void frmChannel::addCommand(QAction *action, const Text &caption)
{
    QMenu *menu = m_tools->menu();
    menu->addSeparator();
    menu->addAction(action);
    connect(menu, &QMenu::aboutToShow, action, [this, action, caption] { action->setText(caption.in(language())); });
}

void frmChannel::importCsvFile(const QString &path)
{
    m_tools->importCsvFile(path);
}

QUndoStack *frmChannel::undoStack() const
{
    return m_history->stack();
}

QAction *frmChannel::findChannelsAction() const
{
    return m_filter->findAction();
}

Language frmChannel::language() const
{
    return Language(m_state.LanguageIndex);
}

QString frmChannel::headerText(int column, int languageIndex)
{
    if (column < 0 || column >= ColumnCount)
        return {};
    return ChannelColumnCaptions[static_cast<std::size_t>(column)].in(languageIndex);
}

QString frmChannel::cellText(int row, int column) const
{
    return m_model->cellText(row, column);
}

int frmChannel::lastChannel() const
{
    return std::min(m_rows - 1, int(ChannelRecord::ChannelCount));
}

int frmChannel::currentColumn() const
{
    return m_grid->currentIndex().column();
}

void frmChannel::RefreshChannelOP()
{
    m_editor->cancel();
    // The list always has its 128 channel rows; a stored count outside that
    // would leave channels out of reach.
    m_rows = std::clamp(int(m_state.ChannelGridRows), 2, int(RowCount));
    // Row 0 carries the captions; the horizontal header shows them fixed
    // above the rows.
    for (int row = 0; row < RowCount; ++row)
        m_grid->setRowHidden(row, row == 0 || row >= m_rows);

    QFont numberFont = m_grid->font();
    numberFont.setPointSize(NumberPointSize);
    const int rowHeight = std::max({QFontMetrics(numberFont).height() + 6, m_combo[1]->sizeHint().height(),
                                    m_text->sizeHint().height()});
    m_grid->verticalHeader()->setDefaultSectionSize(rowHeight);

    m_grid->setCurrentIndex(m_model->index(1, ColRx));
    m_state.ChannelCursor = 1;
    m_state.GridColumn = 1;
}

void frmChannel::SetupChannelGrid()
{
    setWindowTitle(QString());
    setAccessibleName(ChannelListName.in(language()));
    m_grid->setAccessibleName(ChannelListName.in(language()));
    QFont headerFont = m_grid->font();
    headerFont.setPointSize(HeaderPointSize);
    m_grid->horizontalHeader()->setFont(headerFont);
    fitColumns();
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
            for (const Text &word : columnWords(column))
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
    for (int column = 0; column < ColumnCount; ++column)
        columns += m_grid->columnWidth(column);
    return std::max(0, columns - m_grid->viewport()->width());
}

void frmChannel::RefreshChannel()
{
    SetupChannelGrid();
    RefreshData();
}

// The image is the truth now; an editor still open belongs to the old
// data, and so does the history, unless this is a language switch: the
// image then holds what the list held (the switch saved it), and only the
// words change.
void frmChannel::RefreshData()
{
    m_editor->cancel();
    ChannelTable loaded = ChannelTable::load(m_state.image, language());
    bool keepHistory = false;
    if (m_model->language() != language()) {
        ChannelTable shown = m_model->table();
        shown.recaption(language());
        keepHistory = loaded.savesAs(shown);
    }
    if (!keepHistory)
        m_history->clear();
    m_model->setTable(std::move(loaded), language());
    m_tools->caption();
    m_bulk->caption();
    m_filter->caption();
    m_filter->apply();
}

void frmChannel::SaveData()
{
    saveInto(m_state.image);
}

void frmChannel::saveInto(MemoryImage &image)
{
    m_editor->commit();
    m_model->table().save(image, lastChannel());
}

void frmChannel::edit(int channel, const Channel &edited)
{
    const QList<int> selected = selectedChannels();
    m_history->change(EditStep, {{channel, edited}}, selected, selected);
}

void frmChannel::setChannelRx(int channel, const QString &text)
{
    if (channel >= 1 && channel <= lastChannel())
        edit(channel, withRx(m_model->table().at(channel), text, m_state.BandLimits, language()));
}

void frmChannel::setChannelTx(int channel, const QString &text)
{
    if (channel >= 1 && channel <= lastChannel())
        edit(channel, withTx(m_model->table().at(channel), text, m_state.BandLimits, language()));
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

void frmChannel::commitEdit()
{
    m_editor->commit();
}

void frmChannel::SyncGridCursor()
{
    const QModelIndex current = m_grid->currentIndex();
    m_state.ChannelCursor = static_cast<quint8>(std::max(0, current.row()));
    m_state.GridColumn = static_cast<quint8>(std::max(0, current.column()));
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
    if (cell.row() < 1 || cell.row() > lastChannel() || m_grid->isRowHidden(cell.row()))
        return nullptr; // the filter's hidden rows are not edited unseen
    // An editor is named after its column: it has no label of its own.
    for (QWidget *editor : std::initializer_list<QWidget *>{m_text, m_combo[0], m_combo[1]})
        editor->setAccessibleName(headerText(cell.column(), language()));
    nameListTexts(this);
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
        for (const Text &word : columnWords(cell.column()))
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
    if (row < 1 || row > lastChannel())
        return;
    if (editor == m_text) {
        if (column == ColRx)
            setChannelRx(row, text);
        else if (column == ColTx)
            setChannelTx(row, text);
        if (const auto corrected = frequencyCorrection(row, column, text, cellText(row, column), m_state.BandLimits))
            Q_EMIT valueCorrected(*corrected);
        return;
    }
    Channel edited = m_model->table().at(row);
    edited.texts.cell(column) = editor == m_combo[0] ? typedTone(text, language()) : text;
    edit(row, edited);
    if (editor != m_combo[0])
        return;
    if (const auto corrected = toneCorrection(row, column, text, cellText(row, column)))
        Q_EMIT valueCorrected(*corrected);
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
        row = row >= lastChannel() ? 1 : row + 1;
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

// Tab walks the data cells row by row, as in a spreadsheet: from BCL to the
// receive frequency of the next channel shown, from the receive frequency
// back to BCL of the one before; the last channel wraps to the first. The
// channel numbers are no stop.
QModelIndex frmChannel::cellAfterTab(const QModelIndex &cell, bool backwards) const
{
    int row = cell.row();
    int column = std::clamp(cell.column(), int(ColNumber), int(ColBcl)) + (backwards ? -1 : 1);
    if (column >= ColRx && column <= ColBcl)
        return cell.siblingAtColumn(column);
    const int last = lastChannel();
    for (int step = 0; step < last; ++step) {
        row = backwards ? (row <= 1 ? last : row - 1) : (row >= last ? 1 : row + 1);
        if (!m_grid->isRowHidden(row))
            return m_model->index(row, backwards ? ColBcl : ColRx);
    }
    return {};
}

// More than one cell of a spreadsheet, or rows copied from this list, are
// channels even when a click has just opened an editor (a click on an empty
// row's number opens its receive frequency); one cell's text is the cell's.
bool frmChannel::pasteGoesToGrid(const QString &text) const
{
    QStringView cells(text);
    while (cells.endsWith(u'\n') || cells.endsWith(u'\r'))
        cells.chop(1);
    return cells.contains(u'\n') || cells.contains(u'\r') || cells.contains(u'\t');
}

QList<int> frmChannel::selectedChannels() const
{
    return m_selection->channels(lastChannel());
}

void frmChannel::selectChannels(const QList<int> &channels)
{
    m_selection->select(channels);
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
        const int row = mouse ? m_grid->rowAt(menu->pos().y()) : m_grid->currentIndex().row();
        if (row >= 1 && !selectedChannels().contains(row))
            selectChannels({row});
        const QRect cell = m_grid->visualRect(m_grid->currentIndex());
        m_tools->showMenu(mouse ? menu->globalPos() : m_grid->viewport()->mapToGlobal(cell.center()));
        return true;
    }
    if (watched == m_grid->viewport() && m_selection->mouseEvent(event))
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
            requestMemoryMap();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// The filter line comes first in the focus chain, but the list opens with
// the focus in the grid: typing a frequency into channel 1 is what a user
// does first. The window the list is put into gives the focus to the
// child that had it last.
bool frmChannel::event(QEvent *event)
{
    if (event->type() == QEvent::ParentChange)
        m_grid->setFocus(Qt::OtherFocusReason);
    return QWidget::event(event);
}

void frmChannel::closeEvent(QCloseEvent *event)
{
    SaveData();
    QWidget::closeEvent(event);
}

} // namespace wr
