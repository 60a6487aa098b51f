#include "core/MemoryImage.h"

#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace wr {

namespace {

int addressOf(int row, int column)
{
    Q_ASSERT(row >= 0 && row < MemoryImage::RowCount);
    Q_ASSERT(column >= 0 && column < MemoryImage::RowSize);
    return row * MemoryImage::RowSize + column;
}

} // namespace

MemoryImage::MemoryImage()
{
    m_image.fill(Erased);
    m_saved.fill(Erased);
}

std::uint8_t MemoryImage::ReadByte(int address) const
{
    Q_ASSERT(address >= 0 && address < Size);
    return m_image[static_cast<std::size_t>(address)];
}

void MemoryImage::WriteByte(int address, std::uint8_t value)
{
    Q_ASSERT(address >= 0 && address < Size);
    m_image[static_cast<std::size_t>(address)] = value;
}

std::uint8_t MemoryImage::ReadByte(int row, int column) const
{
    return ReadByte(addressOf(row, column));
}

void MemoryImage::WriteByte(int row, int column, std::uint8_t value)
{
    WriteByte(addressOf(row, column), value);
}

QByteArray MemoryImage::row(int row) const
{
    const auto *start = m_image.data() + addressOf(row, 0);
    return QByteArray(reinterpret_cast<const char *>(start), RowSize);
}

void MemoryImage::setRow(int row, QByteArrayView bytes)
{
    Q_ASSERT(bytes.size() == RowSize);
    std::memcpy(m_image.data() + addressOf(row, 0), bytes.data(), RowSize);
}

QByteArray MemoryImage::bytes() const
{
    return QByteArray(reinterpret_cast<const char *>(m_image.data()), Size);
}

void MemoryImage::setBytes(QByteArrayView bytes)
{
    Q_ASSERT(bytes.size() == Size);
    std::memcpy(m_image.data(), bytes.data(), Size);
}

void MemoryImage::TakeSnapshot()
{
    m_saved = m_image;
}

bool MemoryImage::IsModified() const
{
    return m_image != m_saved;
}

void MemoryImage::InitImage()
{
    m_image.fill(Erased);

    auto put = [this](int row, int column, std::initializer_list<std::uint8_t> values) {
        for (std::uint8_t value : values)
            WriteByte(row, column++, value);
    };

    // VFO A 136.02500 MHz and VFO B 435.02500 MHz, simplex, no tones.
    put(200, 0, {0x13, 0x60, 0x25, 0x00, 0x13, 0x60, 0x25, 0x00});
    put(200, 12, {0x00, 0x00, 0x4C, 0x00});
    put(201, 0, {0x43, 0x50, 0x25, 0x00, 0x43, 0x50, 0x25, 0x00});
    put(201, 12, {0x00, 0x00, 0x4C, 0x00});

    // Optional features, side key, programmable keys and VFO steps.
    put(205, 0, {0x20, 0x00, 0x08, 0xC0, 0xC0, 0x00, 0x05, 0x00, 0x02, 0x00, 0x02, 0x05, 0x05, 0x0A, 0x04});
    put(206, 8, {0x90, 0xA0, 0x93, 0x17, 0x62, 0x48, 0xB5});
    put(193, 0, {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});
    put(208, 0, {0x0E, 0x0A, 0x00, 0x14, 0x64, 0x05, 0x14, 0x14});
    put(208, 10, {0x01, 0x02, 0x03, 0x04, 0x05});
    for (int row = 209; row <= 218; ++row) {
        WriteByte(row, 7, 0x00);
        WriteByte(row, 15, 0x00);
    }
    put(224, 0, {0x01, 0x02, 0x03, 0x04, 0x05, 0x14, 0x14});
    put(225, 7, {0x14});

    TakeSnapshot();
}

int ChannelRow(int channel)
{
    Q_ASSERT(channel >= 1 && channel <= 130);
    return channel <= 128 ? channel - 1 : channel + 71;
}

} // namespace wr
