#pragma once

namespace wr {

// Which half of a channel record a codec works on: receive (frequency in
// bytes 0-3, decode tone in 8-9) or transmit (bytes 4-7, encode tone 10-11).
enum class Side { Rx, Tx };

} // namespace wr
