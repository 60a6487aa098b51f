#include "channels/ChannelFilter.h"

namespace wr {

ChannelFilter::ChannelFilter(QStringView text)
{
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool space = i == text.size() || text[i].isSpace();
        if (space && start >= 0) {
            m_words.append(text.sliced(start, i - start).toString());
            start = -1;
        } else if (!space && start < 0) {
            start = i;
        }
    }
}

bool ChannelFilter::matches(int channel, const ChannelTexts &texts) const
{
    if (m_words.isEmpty())
        return true;
    if (texts.isEmpty())
        return false;
    const QString number = QString::number(channel);
    for (const QString &word : m_words) {
        bool found = number.contains(word, Qt::CaseInsensitive);
        for (int column = ColRx; !found && column < ChannelColumnCount; ++column)
            found = texts.cell(column).contains(word, Qt::CaseInsensitive);
        if (!found)
            return false;
    }
    return true;
}

} // namespace wr
