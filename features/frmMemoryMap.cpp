#include "features/frmMemoryMap.h"

#include "core/MemoryImage.h"
#include "features/MemoryMapModel.h"
#include "ui/Accessible.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// Sixteen rows of data in sight below the column header.
constexpr int VisibleRows = 16;
// Rows 0-127 hold the 128 channel records. Enter on a row's last byte goes
// on to the next row only while that is still a channel record.
constexpr int ChannelRows = 128;

// What a screen reader says; the captions themselves stay English.
constexpr Text SpokenTitle{u"Memory Map", u"存储器映射", u"存儲器映射"};
constexpr Text SpokenGrid{u"Memory", u"存储器", u"存儲器"};
constexpr Text SpokenEditor{u"Byte in hexadecimal", u"字节（十六进制）", u"位元組（十六進位）"};
constexpr Text SpokenAddress{u"Address %1", u"地址 %1", u"位址 %1"};
constexpr Text SpokenValue{u"Value %1", u"值 %1", u"值 %1"};

std::optional<QChar> hexDigit(QChar typed)
{
    const QChar upper = typed.toUpper();
    if ((upper >= u'0' && upper <= u'9') || (upper >= u'A' && upper <= u'F'))
        return upper;
    return std::nullopt;
}

} // namespace

frmMemoryMap::frmMemoryMap(MemoryImage &image, Language language, QWidget *parent)
    : QDialog(parent)
    , m_image(image)
    , m_language(language)
    , m_model(new MemoryMapModel(image, language, this))
    , m_grid(new QTableView)
    , m_text(new QLineEdit)
    , m_address(new QLabel)
    , m_value(new QLabel)
    , m_ok(new QPushButton(u"&OK"_s))
    , m_cancel(new QPushButton(u"&Cancel"_s))
{
    setObjectName(u"frmMemoryMap"_s);
    setWindowTitle(u"Memory Map"_s);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_grid->setObjectName(u"msgMemory"_s);
    m_text->setObjectName(u"txtMemory"_s);
    m_address->setObjectName(u"lblAddr"_s);
    m_value->setObjectName(u"LblValue"_s);
    m_ok->setObjectName(u"cmdOK"_s);
    m_cancel->setObjectName(u"cmdCancel"_s);
    setAccessibleName(SpokenTitle.in(language));
    m_grid->setAccessibleName(SpokenGrid.in(language));
    m_text->setAccessibleName(SpokenEditor.in(language));

    for (QLabel *label : {m_address, m_value}) {
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(u"00000"_s) + 12);
    }
    m_address->setToolTip(u"Address"_s);
    m_value->setToolTip(u"Value"_s);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_address);
    bottom->addWidget(m_value);
    bottom->addStretch(1);
    bottom->addWidget(m_ok);
    bottom->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_grid);
    layout->addLayout(bottom);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    m_grid->setModel(m_model);
    prepareEditedGrid(m_grid);
    m_grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_grid->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_grid->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
    // Hexadecimal reads best in columns of equal digits.
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_grid->setFont(fixed);
    m_grid->horizontalHeader()->setFont(fixed);
    m_grid->verticalHeader()->setFont(fixed);
    m_text->setFont(fixed);
    m_text->setAlignment(Qt::AlignCenter);
    m_text->setMaxLength(2);

    CellEditRules &rules = *this;
    m_editor = std::make_unique<CellEditor>(m_grid, rules);
    m_editor->addEditor(m_text);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, &frmMemoryMap::showCurrentCell);
    connect(m_ok, &QPushButton::clicked, this, &frmMemoryMap::accept);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);

    Form_Load();
}

frmMemoryMap::~frmMemoryMap() = default;

// The row header takes two columns' width and each byte one; sixteen rows
// show at a time, each as high as the editor needs.
void frmMemoryMap::Form_Load()
{
    const QFontMetrics metrics(m_grid->font());
    int digit = 0;
    for (const QChar c : u"0123456789ABCDEF"_s)
        digit = std::max(digit, metrics.horizontalAdvance(c));
    const int column = std::max(2 * digit + 12, m_text->minimumSizeHint().width());
    const int row = std::max(metrics.height() + 6, m_text->sizeHint().height());
    m_grid->horizontalHeader()->setDefaultSectionSize(column);
    m_grid->horizontalHeader()->setMinimumSectionSize(column);
    m_grid->verticalHeader()->setMinimumSectionSize(row);
    m_grid->verticalHeader()->setDefaultSectionSize(row);
    m_grid->verticalHeader()->setFixedWidth(2 * column);
    const int header = std::max(row, m_grid->horizontalHeader()->sizeHint().height());
    m_grid->horizontalHeader()->setFixedHeight(header);

    const int frame = 2 * m_grid->frameWidth();
    const int scrollBar = m_grid->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_grid);
    m_grid->setFixedSize(18 * column + scrollBar + frame, header + VisibleRows * row + frame);

    m_grid->setCurrentIndex(m_model->index(0, 0));
    keepCurrentCell(m_grid);
    m_grid->setFocus(Qt::OtherFocusReason);
}

void frmMemoryMap::showCurrentCell(const QModelIndex &cell)
{
    if (!cell.isValid())
        return;
    m_address->setText(MemoryMapModel::addressText(cell));
    m_value->setText(QString::number(m_model->byteAt(cell)));
    // The boxes' names carry their texts, so that they read "Address C8E".
    m_address->setAccessibleName(SpokenAddress.in(m_language).arg(m_address->text()));
    m_value->setAccessibleName(SpokenValue.in(m_language).arg(m_value->text()));
}

void frmMemoryMap::StartByteEdit(int column, int row)
{
    m_grid->setCurrentIndex(m_model->index(row, column));
    m_editor->open();
}

void frmMemoryMap::accept()
{
    m_editor->commit();
    Q_EMIT aboutToStore();
    m_model->writeTo(m_image);
    QDialog::accept();
}

QWidget *frmMemoryMap::editorFor(const QModelIndex &, const QString &text)
{
    m_text->setText(text);
    return m_text;
}

// A hexadecimal digit typed on the grid opens the editor holding it.
std::optional<QChar> frmMemoryMap::startingCharacter(const QModelIndex &, QChar typed) const
{
    return hexDigit(typed);
}

// Hexadecimal digits in upper case, at most two unless typing over a
// selection.
std::optional<QChar> frmMemoryMap::acceptedCharacter(const TypedKey &key) const
{
    if (key.text.size() >= 2 && !key.hasSelection)
        return std::nullopt;
    return hexDigit(key.typed);
}

// Every cell keeps two digits: an emptied one is erased (FF), a single digit
// is the low one.
void frmMemoryMap::commit(const QModelIndex &cell, QWidget *, const QString &text)
{
    QString byte = text;
    if (byte.isEmpty())
        byte = u"FF"_s;
    else if (byte.size() == 1)
        byte.prepend(u'0');
    m_model->setData(cell, byte);
}

// Enter moves one byte right, from a row's last byte to the first of the
// next channel record; past the last record it stays.
QModelIndex frmMemoryMap::cellAfterEnter(const QModelIndex &cell)
{
    if (cell.column() < MemoryImage::RowSize - 1)
        return cell.siblingAtColumn(cell.column() + 1);
    if (cell.row() + 1 < ChannelRows)
        return cell.sibling(cell.row() + 1, 0);
    return {};
}

// The editor would no longer sit over its cell: the edit is dropped.
CellEditRules::Scroll frmMemoryMap::onScroll() const
{
    return Scroll::Cancel;
}

} // namespace wr
