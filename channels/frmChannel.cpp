#include "channels/frmChannel.h"

#include "core/AppState.h"
#include "core/FrequencyCodec.h"
#include "core/Language.h"
#include "core/ToneCodec.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QStringListModel>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <optional>

namespace wr {

namespace {

// Sizes of the list as the radio software lays it out, in twips (1/1440 inch,
// 15 twips a pixel at 96 dpi).
constexpr int TwipsPerPixel = 15;
constexpr std::array<int, frmChannel::ColumnCount> ColumnTwips{750, 1250, 1250, 1300, 1300, 1200, 900, 1250, 1250};
constexpr int HeaderTwips = 500;
constexpr int WindowWidthTwips = 14910;
constexpr int WindowHeightTwips = 9800;

constexpr int HeaderPointSize = 10;
constexpr int NumberPointSize = 12;
const QColor HeaderColour(19, 58, 149);

constexpr int twipsToPixels(int twips)
{
    return (twips + TwipsPerPixel / 2) / TwipsPerPixel;
}

// One notch of a standard mouse wheel.
constexpr int WheelNotch = 120;

constexpr std::array<Text, frmChannel::ColumnCount> Headers{{
    {u"CH.", u"信道", u"信道"},
    {u"Rx Freq", u"接收频率", u"接收頻率"},
    {u"Tx Freq", u"发射频率", u"發射頻率"},
    {u"CTCSS/DCS Dec", u"CTCSS/DCS 解码", u"CTCSS/DCS 解碼"},
    {u"CTCSS/DCS Enc", u"CTCSS/DCS 编码", u"CTCSS/DCS 編碼"},
    {u"TX Power", u"发射功率", u"發射功率"},
    {u"W/N", u"宽/窄", u"寬/窄"},
    {u"Scan Add", u"扫描添加", u"掃描添加"},
    {u"BCL", u"繁忙锁定", u"繁忙鎖定"},
}};

// The words CboChannel1 offers in a list column, in the radio software's order.
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

bool isEnterKey(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}

// The printable character of a key press, or a null QChar for keys that only
// move or edit (arrows, Delete, function keys) and for control characters.
QChar typedCharacter(const QKeyEvent *event)
{
    const QString text = event->text();
    if (text.size() != 1 || !text.front().isPrint())
        return {};
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return {};
    return text.front();
}

// Keys both in-place editors treat alike. Returns whether to swallow a key
// that types no character of its own (Backspace edits, arrows and Home move
// the caret, pasting is refused because it would get around the character
// rules, Ctrl or Alt with a character is swallowed); nullopt for a typed
// character, which the editor's own rules decide.
std::optional<bool> filterNonCharacterKey(const QKeyEvent *event)
{
    if (event->key() == Qt::Key_Backspace)
        return false;
    if (event->matches(QKeySequence::Paste))
        return true;
    if (typedCharacter(event).isNull())
        return !event->text().isEmpty() && event->text().front().isPrint();
    return std::nullopt;
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

frmChannel::frmChannel(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("frmChannel"));
    resize(twipsToPixels(WindowWidthTwips), twipsToPixels(WindowHeightTwips));

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

    // The in-place editors live on the grid's viewport, over the current cell.
    m_text = new QLineEdit(m_grid->viewport());
    m_text->setObjectName(QStringLiteral("TxtChannel"));
    for (int index = 0; index < 2; ++index) {
        auto *combo = new QComboBox(m_grid->viewport());
        combo->setObjectName(QStringLiteral("CboChannel%1").arg(index));
        m_combo[index] = combo;
    }
    // Tones may be typed (CboChannel0); the list columns offer their words
    // only (CboChannel1).
    m_combo[0]->setEditable(true);
    m_combo[0]->setInsertPolicy(QComboBox::NoInsert);
    m_combo[0]->setCompleter(nullptr);
    m_combo[0]->setMaxVisibleItems(16);
    // Its words change with the column, and so does the width it needs.
    m_combo[1]->setSizeAdjustPolicy(QComboBox::AdjustToContents);

    // Only the key filters put text into an editor: no pasting, dropping or
    // input-method composition.
    for (QWidget *editor : {static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_combo[0]),
                            static_cast<QWidget *>(m_combo[1])}) {
        editor->hide();
        editor->setAttribute(Qt::WA_InputMethodEnabled, false);
        editor->setContextMenuPolicy(Qt::NoContextMenu);
        editor->setAcceptDrops(false);
        editor->installEventFilter(this);
    }
    m_text->setAttribute(Qt::WA_InputMethodEnabled, false);
    m_combo[0]->lineEdit()->setAttribute(Qt::WA_InputMethodEnabled, false);
    m_combo[0]->lineEdit()->setAcceptDrops(false);
    m_combo[0]->lineEdit()->installEventFilter(this);

    // The 261 tones sit in a plain string list: a combo's own item model
    // would build an item object for each of them, a cost paid at every
    // start-up for an editor that opens only when a tone is edited.
    m_combo[0]->setModel(new QStringListModel(app().ToneTable, m_combo[0]));

    m_grid->installEventFilter(this);
    m_grid->viewport()->installEventFilter(this);
    m_wheelPager = new WheelPager(m_grid);

    connect(m_grid, &QTableWidget::currentCellChanged, this, [this] { SyncGridCursor(); });
    connect(m_grid->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { commitAllOpen(); });
    connect(m_grid->horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] { commitAllOpen(); });

    RefreshChannelOP();
    RefreshChannel();
}

frmChannel::~frmChannel() = default;

QTableWidget *frmChannel::grid() const
{
    return m_grid;
}

QString frmChannel::headerText(int column, int languageIndex)
{
    if (column < 0 || column >= ColumnCount)
        return {};
    return Headers[static_cast<std::size_t>(column)].in(languageIndex);
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
    discardOpenEditors();
    // The list always has its 128 channel rows; a stored count outside that
    // would leave channels out of reach.
    const int rows = std::clamp(int(app().ChannelGridRows), 2, int(RowCount));
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
    app().ChannelCursor = 1;
    app().GridColumn = 1;
}

void frmChannel::SetupChannelGrid()
{
    setWindowTitle(QString());
    QFont headerFont = m_grid->font();
    headerFont.setPointSize(HeaderPointSize);
    m_grid->horizontalHeader()->setFont(headerFont);
    const int language = app().LanguageIndex;
    for (int column = 0; column < ColumnCount; ++column) {
        const QString caption = headerText(column, language);
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
}

// Column widths as laid out in twips, widened where a value word of the
// current language or a word of a caption would not fit, so no text is cut
// off. A caption wider than its column goes onto two lines (the header grows
// if they need more than row 0's height); a list column's combo may stand out
// over its neighbour while it is open (see placeEditor), so the column only
// has to fit its words.
void frmChannel::fitColumns()
{
    const int language = app().LanguageIndex;
    QHeaderView *header = m_grid->horizontalHeader();
    const QFontMetrics headerMetrics(header->font());
    const QFontMetrics cellMetrics(m_grid->font());
    QFont numberFont = m_grid->font();
    numberFont.setPointSize(NumberPointSize);
    const QFontMetrics numberMetrics(numberFont);
    constexpr int Padding = 14;
    constexpr int ComboArrow = 24;
    const int headerMargin = header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
    const int headerPadding = 2 * headerMargin + 4;

    int captionHeight = headerMetrics.height();
    for (int column = 0; column < ColumnCount; ++column) {
        int width = twipsToPixels(ColumnTwips[static_cast<std::size_t>(column)]);
        const QString caption = headerText(column, language);
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
            width = std::max({width, cellMetrics.horizontalAdvance(QStringLiteral("D000N")) + Padding + ComboArrow,
                              cellMetrics.horizontalAdvance(Words::None.in(language)) + Padding + ComboArrow});
            break;
        default:
            for (const Text &word : columnChoices(column))
                width = std::max(width, cellMetrics.horizontalAdvance(word.in(language)) + Padding);
            break;
        }
        m_grid->setColumnWidth(column, width);
        const QRect wrapped = headerMetrics.boundingRect(QRect(0, 0, width - headerPadding, 1000),
                                                         Qt::AlignCenter | Qt::TextWordWrap, caption);
        captionHeight = std::max(captionHeight, wrapped.height());
    }
    // Row 0's height, or the captions' if they need more.
    header->setFixedHeight(std::max(twipsToPixels(HeaderTwips), captionHeight + 2 * headerMargin));
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
    // The image is the truth now; an editor still open belongs to the old data.
    discardOpenEditors();
    const int language = app().LanguageIndex;
    const int rows = lastRow();
    const QuietFill quiet(m_grid);
    for (int channel = 1; channel <= rows; ++channel)
        writeRow(channel, ReadChannelTexts(app().image, channel, language));
}

void frmChannel::SaveData()
{
    if (isOpen(m_text))
        TxtChannel_Validate();
    for (int index = 0; index < 2; ++index) {
        if (isOpen(m_combo[index]))
            CboChannel_Validate(index);
    }
    const int rows = lastRow();
    for (int channel = 1; channel <= rows; ++channel)
        SaveChannel(app().image, channel, rowTexts(channel));
}

void frmChannel::setChannelRx(int channel, const QString &text)
{
    if (channel < 1 || channel > lastRow())
        return;
    if (text.isEmpty()) {
        writeRow(channel, ChannelTexts{});
        return;
    }
    const QString rx = NormaliseRxFreq(text, app().BandLimits);
    setCell(channel, ColRx, rx);
    if (!cellText(channel, ColEncode).isEmpty())
        return;

    // A new channel: the transmit side follows the receive frequency, and the
    // record gets its defaults at once.
    const int language = app().LanguageIndex;
    const QString none = Words::None.in(language);
    setCell(channel, ColTx, NormaliseTxFreq(rx, app().BandLimits));
    setCell(channel, ColDecode, none);
    setCell(channel, ColEncode, none);
    setCell(channel, ColPower, Words::High.in(language));
    setCell(channel, ColBandwidth, Words::Wide.in(language));
    setCell(channel, ColScanAdd, Words::On.in(language));
    setCell(channel, ColBcl, Words::Off.in(language));
    CreateChannel(app().image, channel);
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
    setCell(channel, ColTx, NormaliseTxFreq(text, app().BandLimits));
    if (cellText(channel, ColEncode).isEmpty())
        setCell(channel, ColEncode, Words::None.in(app().LanguageIndex));
}

bool frmChannel::isOpen(const QWidget *editor) const
{
    return !editor->isHidden();
}

void frmChannel::hideEditor(QWidget *editor)
{
    const bool hadFocus = editor->hasFocus() || editor->isAncestorOf(QApplication::focusWidget());
    const bool wasCommitting = m_committing;
    m_committing = true;
    if (hadFocus)
        m_grid->setFocus(Qt::OtherFocusReason);
    editor->hide();
    m_committing = wasCommitting;
}

void frmChannel::discardOpenEditors()
{
    for (QWidget *editor : {static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_combo[0]),
                            static_cast<QWidget *>(m_combo[1])}) {
        if (isOpen(editor))
            hideEditor(editor);
    }
}

void frmChannel::TxtChannel_Validate()
{
    if (!isOpen(m_text) || m_committing)
        return;
    m_committing = true;
    const QString text = m_text->text();
    hideEditor(m_text);
    if (m_editColumn == ColRx)
        setChannelRx(m_editRow, text);
    else if (m_editColumn == ColTx)
        setChannelTx(m_editRow, text);
    m_committing = false;
}

void frmChannel::CboChannel_Validate(int index)
{
    if (index < 0 || index > 1 || !isOpen(m_combo[index]) || m_committing)
        return;
    m_committing = true;
    QComboBox *combo = m_combo[index];
    QString text;
    if (index == 0)
        text = normaliseToneInput(combo->currentText(), app().LanguageIndex);
    else
        text = combo->currentIndex() >= 0 ? combo->currentText() : m_savedCellText;
    if (m_editRow >= 1 && m_editRow <= lastRow() && m_editColumn > ColNumber && m_editColumn < ColumnCount)
        setCell(m_editRow, m_editColumn, text);
    hideEditor(combo);
    m_committing = false;
}

void frmChannel::commitOpenEditor()
{
    if (isOpen(m_text))
        TxtChannel_Validate();
    else if (isOpen(m_combo[0]))
        CboChannel_Validate(0);
    else if (isOpen(m_combo[1]))
        CboChannel_Validate(1);
    m_grid->setFocus(Qt::OtherFocusReason);
}

void frmChannel::commitAllOpen()
{
    if (m_committing)
        return;
    if (isOpen(m_text))
        TxtChannel_Validate();
    for (int index = 0; index < 2; ++index) {
        if (isOpen(m_combo[index]))
            CboChannel_Validate(index);
    }
}

void frmChannel::SyncGridCursor()
{
    app().ChannelCursor = static_cast<quint8>(std::max(0, m_grid->currentRow()));
    app().GridColumn = static_cast<quint8>(std::max(0, m_grid->currentColumn()));
}

// An empty row can only be started by its receive frequency, and the encode
// tone of a row without a transmit frequency is reached through that
// frequency.
void frmChannel::forceEditableColumn()
{
    const int row = m_grid->currentRow();
    if (row < 1)
        return;
    if (cellText(row, ColRx).isEmpty())
        m_grid->setCurrentCell(row, ColRx);
    else if (m_grid->currentColumn() == ColEncode && cellText(row, ColTx).isEmpty())
        m_grid->setCurrentCell(row, ColTx);
    SyncGridCursor();
}

void frmChannel::placeEditor(QWidget *editor)
{
    const QModelIndex index = m_grid->model()->index(m_editRow, m_editColumn);
    m_grid->scrollTo(index);
    editor->setGeometry(m_grid->visualRect(index));
}

// A list combo wider than its cell (its word plus the arrow) stands out to the
// right, or to the left at the grid's edge, so its word is never cut off.
void frmChannel::widenToContents(QComboBox *combo)
{
    QRect area = combo->geometry();
    const int wanted = combo->sizeHint().width();
    if (wanted <= area.width())
        return;
    area.setWidth(wanted);
    const int overhang = area.right() - (m_grid->viewport()->width() - 1);
    if (overhang > 0)
        area.moveLeft(std::max(0, area.left() - overhang));
    combo->setGeometry(area);
}

void frmChannel::ShowCellEditor()
{
    commitAllOpen(); // an editor still open belongs to the previous cell
    SyncGridCursor();
    m_editRow = app().ChannelCursor;
    m_editColumn = app().GridColumn;
    if (m_editRow < 1 || m_editRow > lastRow())
        return;
    m_savedCellText = cellText(m_editRow, m_editColumn);
    const int language = app().LanguageIndex;

    switch (m_editColumn) {
    case ColRx:
    case ColTx:
        placeEditor(m_text);
        m_text->setMaxLength(9);
        m_text->setText(m_savedCellText);
        m_text->selectAll();
        m_text->show();
        m_text->setFocus(Qt::OtherFocusReason);
        break;
    case ColDecode:
    case ColEncode: {
        QComboBox *combo = m_combo[0];
        placeEditor(combo);
        if (m_savedCellText.isEmpty())
            break; // a tone of a channel without that side: nothing to edit
        if (combo->count() > 0)
            combo->setItemText(0, Words::None.in(language));
        combo->setEditText(m_savedCellText);
        combo->lineEdit()->selectAll();
        combo->show();
        combo->setFocus(Qt::OtherFocusReason);
        break;
    }
    case ColPower:
    case ColBandwidth:
    case ColScanAdd:
    case ColBcl: {
        QComboBox *combo = m_combo[1];
        placeEditor(combo);
        combo->clear();
        for (const Text &word : columnChoices(m_editColumn))
            combo->addItem(word.in(language));
        combo->setCurrentIndex(combo->findText(m_savedCellText));
        widenToContents(combo);
        combo->show();
        combo->setFocus(Qt::OtherFocusReason);
        break;
    }
    default:
        break;
    }
}

bool frmChannel::gridKeyPress(QKeyEvent *event)
{
    const QChar typed = typedCharacter(event);
    const bool enter = isEnterKey(event);
    const bool editKey = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Escape;
    if (typed.isNull() && !enter && !editKey)
        return false; // moving around the grid

    forceEditableColumn();
    const int column = app().GridColumn;
    if (column == ColRx || column == ColTx) {
        if (enter) {
            ShowCellEditor();
        } else if (isAsciiDigit(typed) || typed == u'.') {
            ShowCellEditor();
            if (isOpen(m_text)) {
                m_text->setText(QString(typed));
                m_text->setCursorPosition(1);
            }
        }
    } else if (enter) {
        ShowCellEditor();
    }
    return true;
}

bool frmChannel::textEditorKeyPress(QKeyEvent *event)
{
    if (isEnterKey(event)) {
        TxtChannel_Validate();
        m_grid->setFocus(Qt::OtherFocusReason);
        const int row = m_grid->currentRow();
        const int column = std::min(m_grid->currentColumn() + 1, ColumnCount - 1);
        m_grid->setCurrentCell(row, column);
        SyncGridCursor();
        return true;
    }
    if (event->key() == Qt::Key_Escape) {
        setCell(m_editRow, m_editColumn, m_savedCellText);
        hideEditor(m_text);
        m_grid->setFocus(Qt::OtherFocusReason);
        return true;
    }
    if (const std::optional<bool> swallow = filterNonCharacterKey(event))
        return *swallow;
    const QChar typed = typedCharacter(event);
    return !(isAsciiDigit(typed) || typed == u'.' || typed == u',');
}

void frmChannel::advanceAfterCombo()
{
    int row = m_grid->currentRow();
    int column = m_grid->currentColumn();
    if (column == ColDecode && cellText(row, ColEncode).isEmpty()) {
        column = ColPower;
    } else if (column >= ColumnCount - 1) {
        column = ColRx;
        row = row >= lastRow() ? 1 : row + 1;
    } else {
        ++column;
    }
    m_grid->setCurrentCell(row, column);
    SyncGridCursor();
}

bool frmChannel::comboKeyPress(int index, QKeyEvent *event)
{
    QComboBox *combo = m_combo[index];
    if (isEnterKey(event)) {
        CboChannel_Validate(index);
        m_grid->setFocus(Qt::OtherFocusReason);
        advanceAfterCombo();
        return true;
    }
    if (event->key() == Qt::Key_Escape) {
        if (combo->isEditable())
            combo->setEditText(m_savedCellText);
        else
            combo->setCurrentIndex(combo->findText(m_savedCellText));
        return true;
    }
    if (const std::optional<bool> swallow = filterNonCharacterKey(event))
        return *swallow;
    const QChar typed = typedCharacter(event);

    QLineEdit *edit = combo->lineEdit();
    const QString text = combo->currentText();
    // A list combo has no caret: its text counts as wholly selected.
    const bool wholeSelected = !edit || (!text.isEmpty() && edit->selectedText() == text);
    const bool dcs = text.startsWith(u'D');
    auto insertUpper = [edit](QChar c) {
        if (edit)
            edit->insert(QString(c.toUpper()));
    };

    if (isAsciiDigit(typed)) {
        if (wholeSelected)
            return false;
        return dcs ? text.size() >= 4 : text.size() >= 5;
    }
    if (typed == u'D' || typed == u'd') {
        if (text.isEmpty() || wholeSelected)
            insertUpper(typed);
        return true;
    }
    if (typed == u'.')
        return text.isEmpty() || text.size() >= 4 || text.contains(u'.');
    if (typed == u'N' || typed == u'n' || typed == u'I' || typed == u'i') {
        if (dcs && text.size() == 4)
            insertUpper(typed);
        return true;
    }
    return true;
}

bool frmChannel::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();

    if (watched == m_grid) {
        if (type == QEvent::KeyPress)
            return gridKeyPress(static_cast<QKeyEvent *>(event));
        if (type == QEvent::FocusIn)
            m_grid->viewport()->installEventFilter(m_wheelPager);
        else if (type == QEvent::FocusOut)
            m_grid->viewport()->removeEventFilter(m_wheelPager);
        return false;
    }

    if (watched == m_grid->viewport()) {
        if (type == QEvent::MouseButtonRelease) {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            const auto gesture = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier;
            if (mouse->button() == Qt::RightButton && (mouse->modifiers() & gesture) == gesture) {
                commitOpenEditor();
                SaveData();
                Q_EMIT memoryMapRequested();
                return true;
            }
            if (mouse->button() == Qt::LeftButton && m_grid->indexAt(mouse->position().toPoint()).isValid()) {
                forceEditableColumn();
                SyncGridCursor();
                ShowCellEditor();
            }
        }
        return false;
    }

    QComboBox *comboWatched = nullptr;
    int comboIndex = -1;
    for (int index = 0; index < 2; ++index) {
        if (watched == m_combo[index] || (m_combo[index]->lineEdit() && watched == m_combo[index]->lineEdit())) {
            comboWatched = m_combo[index];
            comboIndex = index;
        }
    }

    if (type == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        if (watched == m_text)
            return textEditorKeyPress(key);
        if (comboWatched)
            return comboKeyPress(comboIndex, key);
    } else if (type == QEvent::FocusOut) {
        // Focus leaving an editor commits it, like a click elsewhere in the
        // list; a combo's own drop-down and a switch to another window do not.
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        if (m_committing || reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason)
            return false;
        if (watched == m_text)
            TxtChannel_Validate();
        else if (comboWatched && !comboWatched->isAncestorOf(QApplication::focusWidget())
                 && comboWatched != QApplication::focusWidget())
            CboChannel_Validate(comboIndex);
    } else if (type == QEvent::ShortcutOverride && (watched == m_text || comboWatched)) {
        // Enter and Esc belong to the editor, not to a default button or a
        // window shortcut.
        auto *key = static_cast<QKeyEvent *>(event);
        if (isEnterKey(key) || key->key() == Qt::Key_Escape) {
            event->accept();
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
