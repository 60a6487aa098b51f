#include "channels/ChannelFilterBar.h"

#include "channels/ChannelFilter.h"
#include "channels/ChannelModel.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>

#include <algorithm>

namespace wr {

using namespace Qt::StringLiterals;

namespace {

constexpr Text LabelText{u"Filter:", u"筛选：", u"篩選："};
constexpr Text Placeholder{u"Filter channels", u"筛选信道", u"篩選信道"};
constexpr Text Description{u"Shows only the channels whose cells hold every word typed",
                           u"只显示单元格中含有所有输入词语的信道", u"只顯示儲存格中含有所有輸入詞語的信道"};

// Wide enough for a frequency, a tone and a word or two.
constexpr int LineCharacters = 30;

} // namespace

ChannelFilterBar::ChannelFilterBar(const ChannelModel &model, QTableView *grid, std::function<int()> lastChannel,
                                   QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_grid(grid)
    , m_lastChannel(std::move(lastChannel))
    , m_label(new QLabel(this))
    , m_line(new QLineEdit(this))
    , m_find(new QAction(this))
{
    setObjectName(u"ChannelFilterBar"_s);
    m_label->setObjectName(u"lblFilter"_s);
    m_label->setBuddy(m_line);
    m_line->setObjectName(u"txtFilter"_s);
    m_line->setClearButtonEnabled(true);
    m_line->setMinimumWidth(m_line->fontMetrics().averageCharWidth() * LineCharacters);
    m_line->installEventFilter(this);
    connect(m_line, &QLineEdit::textChanged, this, &ChannelFilterBar::apply);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(m_label);
    layout->addWidget(m_line);
    layout->addStretch(1);

    // The line's text is selected, so typing replaces it and the arrow keys
    // keep it.
    m_find->setObjectName(u"findChannels"_s);
    m_find->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    m_find->setShortcutContext(Qt::WindowShortcut);
    connect(m_find, &QAction::triggered, this, [this] {
        m_line->setFocus(Qt::ShortcutFocusReason);
        m_line->selectAll();
    });
    addAction(m_find);
}

void ChannelFilterBar::caption()
{
    const Language language = m_model.language();
    m_label->setText(LabelText.in(language));
    m_line->setPlaceholderText(Placeholder.in(language));
    m_line->setAccessibleName(Placeholder.in(language));
    m_line->setAccessibleDescription(Description.in(language));
    m_line->setToolTip(Placeholder.in(language) + u" ("_s + m_find->shortcut().toString(QKeySequence::NativeText)
                       + u')');
}

void ChannelFilterBar::apply()
{
    const ChannelFilter filter(m_line->text());
    const int last = m_lastChannel();
    int shown = 0;
    for (int row = 1; row < ChannelModel::RowCount; ++row) {
        const bool show = row <= last && filter.matches(row, m_model.table().at(row).texts);
        // Only rows that change: each change makes the view lay its rows out.
        if (m_grid->isRowHidden(row) == show)
            m_grid->setRowHidden(row, !show);
        shown += show ? 1 : 0;
    }
    Q_EMIT shownChanged(filter.isActive() ? shown : -1);
}

void ChannelFilterBar::goToFirstShown()
{
    for (int row = 1; row <= m_lastChannel(); ++row) {
        if (m_grid->isRowHidden(row))
            continue;
        const int column = std::max<int>(ColRx, m_grid->currentIndex().column());
        m_grid->setCurrentIndex(m_grid->model()->index(row, column));
        m_grid->setFocus(Qt::OtherFocusReason);
        return;
    }
}

bool ChannelFilterBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_line || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->modifiers() & ~Qt::KeypadModifier)
        return false;
    switch (key->key()) {
    case Qt::Key_Escape:
        if (m_line->text().isEmpty())
            return false;
        m_line->clear();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        goToFirstShown();
        return true;
    default:
        return false;
    }
}

} // namespace wr
