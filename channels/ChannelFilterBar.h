#pragma once

#include <QWidget>

#include <functional>

class QAction;
class QLabel;
class QLineEdit;
class QTableView;

namespace wr {

class ChannelModel;

// The filter line above the channel grid (txtFilter) and its label. Each
// keystroke hides the rows of the channels the words typed leave out
// (ChannelFilter) and shows the others. Rows are only hidden: row n stays
// channel n, so whatever is done to a row lands on the channel it names.
//
// Keys: Ctrl+F anywhere in the window comes to the line; Esc in it clears
// it; Enter or Down go to the first channel shown. Nothing here ever moves
// the focus otherwise: typing leaves it in the line, and hiding rows leaves
// it in the grid.
class ChannelFilterBar : public QWidget
{
    Q_OBJECT

public:
    // lastChannel: the last channel row the list shows; the rows after it
    // stay hidden whatever is typed.
    ChannelFilterBar(const ChannelModel &model, QTableView *grid, std::function<int()> lastChannel,
                     QWidget *parent = nullptr);

    QLineEdit *line() const { return m_line; }
    // Ctrl+F: the line, its text selected. It works wherever the focus is
    // in the window of the bar and of any other widget it is added to (the
    // main window adds it, since the list sits in a sub-window of its own).
    QAction *findAction() const { return m_find; }

    // Label, placeholder and accessible texts in the model's language.
    void caption();
    // Hides and shows the rows as the channels stand now. It runs when the
    // text changes and after the list is reloaded or switches its language;
    // an edit of a channel leaves its row shown until then.
    void apply();

Q_SIGNALS:
    // After every apply: how many channels are shown while a filter is
    // active, -1 while none is.
    void shownChanged(int shown);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void goToFirstShown();

    const ChannelModel &m_model;
    QTableView *m_grid;
    std::function<int()> m_lastChannel;
    QLabel *m_label;
    QLineEdit *m_line;
    QAction *m_find;
};

} // namespace wr
