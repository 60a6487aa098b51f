#pragma once

#include "core/AppState.h"
#include "core/MemoryImage.h"

#include <QList>

#include <utility>

namespace wr::test {

// Rows the clone transfer moves: 0-127, 200-247 and 399-409 both ways, and
// row 416 (band limits) when reading.
inline QList<int> transferredRows(bool read)
{
    QList<int> rows;
    for (auto [first, end] : {std::pair{0, 128}, std::pair{200, 248}, std::pair{399, 410}})
        for (int row = first; row < end; ++row)
            rows.append(row);
    return read ? rows << 416 : rows;
}

// Fills an image with bytes that differ from row to row and from one seed to
// another, so a row in the wrong place or a stale row shows.
inline void fillPattern(MemoryImage &image, int seed)
{
    for (int address = 0; address < MemoryImage::Size; ++address)
        image.WriteByte(address, static_cast<std::uint8_t>((address * 7 + (address >> 4) * 3 + seed * 101) & 0xFF));
}

// The application state for one transfer: its language, direction and port.
inline AppState &transferState(int language, bool read, int port)
{
    AppState &state = app();
    state.LanguageIndex = static_cast<quint8>(language);
    state.LinkDirection = read ? 0 : 1;
    state.PortNumber = static_cast<quint8>(port);
    return state;
}

} // namespace wr::test
