#include "core/ImageFields.h"

namespace wr {

int bcdByteValue(std::uint8_t byte)
{
    const int high = byte >> 4;
    const int low = byte & 0x0F;
    if (high > 9)
        return 0;
    return low > 9 ? high : high * 10 + low;
}

int BitField::read(const MemoryImage &image) const
{
    return (image.ReadByte(address) & mask()) >> shift;
}

void BitField::write(MemoryImage &image, int value) const
{
    const std::uint8_t kept = image.ReadByte(address) & ~mask();
    image.WriteByte(address, static_cast<std::uint8_t>(kept | ((value << shift) & mask())));
}

namespace {

int numberCount(const NumberChoices &numbers)
{
    return std::max(0, numbers.last - numbers.first + 1);
}

QString numberText(const NumberChoices &numbers, int code)
{
    const int value = code * numbers.times + numbers.plus;
    if (numbers.decimals <= 0)
        return QString::number(value);
    int unit = 1;
    for (int i = 0; i < numbers.decimals; ++i)
        unit *= 10;
    return QStringLiteral("%1.%2").arg(value / unit).arg(value % unit, numbers.decimals, 10, QChar(u'0'));
}

} // namespace

int ListField::count() const
{
    return int(words.size()) + numberCount(numbers);
}

int ListField::codeAt(int position) const
{
    if (position < 0 || position >= count())
        return -1;
    if (position < int(words.size()))
        return words[std::size_t(position)].code;
    return numbers.first + position - int(words.size());
}

QStringList ListField::items(int languageIndex) const
{
    QStringList items;
    items.reserve(count());
    for (const Choice &word : words)
        items.append(word.text.in(languageIndex));
    for (int code = numbers.first; code <= numbers.last; ++code)
        items.append(numberText(numbers, code));
    return items;
}

int ListField::load(const MemoryImage &image) const
{
    if (!bits)
        return NoSelection;
    const int stored = bits->read(image);
    const int code = codeOf ? codeOf(stored) : stored;
    if (code == NoSelection)
        return NoSelection;
    for (int position = 0; position < count(); ++position) {
        if (codeAt(position) == code)
            return position;
    }
    return 0;
}

void ListField::store(MemoryImage &image, int position) const
{
    const int code = codeAt(position);
    if (!bits || code < 0)
        return;
    bits->write(image, storedOf ? storedOf(code) : code);
}

FieldValues loadFields(const MemoryImage &image, const FieldTable &table)
{
    FieldValues values;
    for (const ListField &list : table.lists)
        values.positions.append(list.load(image));
    for (const CheckField &check : table.checks)
        values.checked.append(check.load(image));
    return values;
}

void storeFields(MemoryImage &image, const FieldTable &table, const FieldValues &values)
{
    for (const int address : table.rebuiltBytes)
        image.WriteByte(address, 0);
    for (std::size_t i = 0; i < table.lists.size() && qsizetype(i) < values.positions.size(); ++i)
        table.lists[i].store(image, values.positions.at(qsizetype(i)));
    for (std::size_t i = 0; i < table.checks.size() && qsizetype(i) < values.checked.size(); ++i)
        table.checks[i].store(image, values.checked.at(qsizetype(i)));
}

namespace {

QString captionText(const FieldTable &table, QStringView control, int languageIndex)
{
    for (const Caption &caption : table.captions) {
        if (caption.control == control)
            return captionName(caption.text.in(languageIndex));
    }
    return {};
}

} // namespace

QString FieldLine::text() const
{
    return caption + u':' + (value.isEmpty() ? QString() : u' ' + value);
}

QString lineCaption(const FieldTable &table, const ReportLine &line, int languageIndex)
{
    QStringList name;
    for (const QStringView caption : {line.caption, line.subCaption}) {
        if (!caption.isEmpty())
            name.append(captionText(table, caption, languageIndex));
    }
    return name.join(u' ');
}

QList<FieldLine> describeFields(const MemoryImage &image, const FieldTable &table, int languageIndex)
{
    QList<FieldLine> report;
    for (const ReportLine &line : table.lines) {
        QString name = lineCaption(table, line, languageIndex);
        for (const ListField &list : table.lists) {
            // A list that holds no field shows no selection and no bits.
            if (list.control == line.field)
                report.append({name, list.items(languageIndex).value(list.load(image)),
                               list.bits.value_or(BitField{0, 0, 0})});
        }
        for (const CheckField &check : table.checks) {
            if (check.control != line.field)
                continue;
            if (name.isEmpty())
                name = check.text.in(languageIndex);
            report.append({name, (check.load(image) ? Words::On : Words::Off).in(languageIndex), check.bit});
        }
    }
    return report;
}

} // namespace wr
