#include "channels/ChannelHistory.h"

#include "channels/ChannelModel.h"

#include <QUndoStack>

#include <utility>

namespace wr {

class ChannelHistory::Step : public QUndoCommand
{
public:
    Step(ChannelHistory &history, const QString &name, ChannelChanges before, ChannelChanges after,
         QList<int> selectedBefore, QList<int> selectedAfter)
        : QUndoCommand(name)
        , m_history(history)
        , m_before(std::move(before))
        , m_after(std::move(after))
        , m_selectedBefore(std::move(selectedBefore))
        , m_selectedAfter(std::move(selectedAfter))
    {
    }

    void undo() override
    {
        apply(m_before);
        select(m_selectedBefore);
    }

    // The first redo is the push: the change is made, and whoever made it
    // chose the selection.
    void redo() override
    {
        apply(m_after);
        if (std::exchange(m_pushed, true))
            select(m_selectedAfter);
    }

private:
    void apply(ChannelChanges channels)
    {
        const Language language = m_history.m_model.language();
        for (auto it = channels.begin(); it != channels.end(); ++it) {
            it->texts = recaptioned(std::move(it->texts), language);
            for (std::size_t i = 0; i < it->hidden.size(); ++i)
                m_history.m_image.WriteByte(ChannelRow(it.key()), Channel::FirstHiddenByte + int(i), it->hidden[i]);
        }
        m_history.m_model.setChannels(channels);
    }

    void select(const QList<int> &selected)
    {
        if (m_history.m_select)
            m_history.m_select(selected);
    }

    ChannelHistory &m_history;
    ChannelChanges m_before, m_after;
    QList<int> m_selectedBefore, m_selectedAfter;
    bool m_pushed = false;
};

ChannelHistory::ChannelHistory(ChannelModel &model, MemoryImage &image, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_image(image)
    , m_stack(new QUndoStack(this))
{
}

void ChannelHistory::setSelector(std::function<void(const QList<int> &)> select)
{
    m_select = std::move(select);
}

void ChannelHistory::change(const Text &name, const ChannelChanges &after, const QList<int> &selectedBefore,
                            const QList<int> &selectedAfter)
{
    ChannelChanges before, changed;
    for (auto it = after.begin(); it != after.end(); ++it) {
        const Channel &now = m_model.table().at(it.key());
        if (now != it.value()) {
            before.insert(it.key(), now);
            changed.insert(it.key(), it.value());
        }
    }
    if (changed.isEmpty())
        return;
    m_stack->push(new Step(*this, name.in(m_model.language()), std::move(before), std::move(changed), selectedBefore,
                           selectedAfter));
}

void ChannelHistory::clear()
{
    m_stack->clear();
}

} // namespace wr
