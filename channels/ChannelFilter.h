#pragma once

#include "channels/ChannelRecord.h"

#include <QStringList>
#include <QStringView>

namespace wr {

// The channel list's filter: the words typed into the filter line (split at
// any kind of space, the ideographic one included). A channel passes when
// every word is found, whatever its case, in one of the cells the list shows
// for it: its number, frequencies, tones, power, W/N, scan add and BCL, in
// the language they are shown in. Each word may be found in another cell;
// no word spans two cells. While any word is typed, empty channels do not
// pass: a filter looks for channels, and an empty row holds none.
//
//   "446 low"   channel 7  446.00625 446.00625 None None Low Narrow On Off   passes
//               channel 9  446.10000 446.10000 None None High Wide On Off    does not
class ChannelFilter
{
public:
    explicit ChannelFilter(QStringView text = {});

    // Whether any word was typed; a filter of spaces alone lets every row pass.
    bool isActive() const { return !m_words.isEmpty(); }
    bool matches(int channel, const ChannelTexts &texts) const;

private:
    QStringList m_words;
};

} // namespace wr
