#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <cstdint>

namespace wr {

// The radio's 16 KB memory, 1024 rows of 16 bytes, byte for byte as the radio
// holds it. Image address A = row * 16 + column is also the radio's own memory
// address and the byte's offset in the body of a data file. 0xFF is erased.
//
//   row    address          content
//   0-127  0x0000-0x07FF    channels 1-128, one 16-byte record each
//   193    0x0C10-0x0C1F    bytes 0-7 cleared in a fresh image; never transferred
//   200    0x0C80-0x0C8F    VFO A (channel 129), channel record layout
//   201    0x0C90-0x0C9F    VFO B (channel 130), channel record layout
//   202    0x0CA0-0x0CAF    channel-empty bitmap (1 = empty)
//   203    0x0CB0-0x0CBF    scan-skip bitmap (1 = not scanned)
//   205-247 0x0CD0-0x0F7F   optional features, keys, VFO steps and offsets
//   399-409 0x18F0-0x199F   FM broadcast radio and further settings
//   416    0x1A00-0x1A0F    band limits, read from the radio, never written to it
//
// Beside the working image the class keeps the snapshot taken when the data
// was last known to be in step with a file or the radio.
class MemoryImage
{
public:
    static constexpr int RowCount = 1024;
    static constexpr int RowSize = 16;
    static constexpr int Size = RowCount * RowSize;
    static constexpr std::uint8_t Erased = 0xFF;

    // A new image is erased everywhere, snapshot included; InitImage() gives
    // the defaults of a fresh radio.
    MemoryImage();

    std::uint8_t ReadByte(int address) const;
    void WriteByte(int address, std::uint8_t value);
    std::uint8_t ReadByte(int row, int column) const;
    void WriteByte(int row, int column, std::uint8_t value);

    QByteArray row(int row) const;
    void setRow(int row, QByteArrayView bytes); // exactly RowSize bytes

    QByteArray bytes() const;
    void setBytes(QByteArrayView bytes); // exactly Size bytes; snapshot untouched
    const std::uint8_t *data() const { return m_image.data(); }

    void TakeSnapshot();
    bool IsModified() const;

    // Fresh radio defaults, then the snapshot. Row 416 (band limits) stays erased.
    void InitImage();

    bool operator==(const MemoryImage &other) const { return m_image == other.m_image; }

private:
    std::array<std::uint8_t, Size> m_image;
    std::array<std::uint8_t, Size> m_saved;
};

// Row of channel n: channels 1-128 are rows 0-127; 129 and 130 are the two
// VFO records in rows 200 and 201.
int ChannelRow(int channel);

} // namespace wr
