#pragma once

#include "channels/ChannelTable.h"

#include <QList>
#include <QObject>

#include <functional>

class QUndoStack;

namespace wr {

class ChannelModel;

// The channel list's undo history: every change of the working copy after a
// load is one step, made by change(). A step keeps the channels it changed,
// before and after, and replays them with their words in the model's
// language of the moment, so a language switch keeps the history.
//
// Bytes 12-15 of a channel reach the image at once whenever a step changes
// them (the cells wait for the next save): a created channel's bytes are in
// the image straight away, and undoing the step gives back what the record
// held.
class ChannelHistory : public QObject
{
    Q_OBJECT

public:
    ChannelHistory(ChannelModel &model, MemoryImage &image, QObject *parent = nullptr);

    QUndoStack *stack() const { return m_stack; }

    // Shows the rows selected before or after a step when it is undone or
    // redone.
    void setSelector(std::function<void(const QList<int> &)> select);

    // Gives channels their new values as one step named `name`; no step
    // when nothing differs. The selection before and after goes with it;
    // the caller shows the selection after.
    void change(const Text &name, const ChannelChanges &after, const QList<int> &selectedBefore,
                const QList<int> &selectedAfter);
    void clear();

private:
    class Step;

    ChannelModel &m_model;
    MemoryImage &m_image;
    QUndoStack *m_stack;
    std::function<void(const QList<int> &)> m_select;
};

} // namespace wr
