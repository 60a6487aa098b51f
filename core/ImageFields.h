#pragma once

#include "core/Language.h"
#include "core/MemoryImage.h"

#include <QList>
#include <QStringList>
#include <QStringView>

#include <cstdint>
#include <optional>
#include <span>

namespace wr {

// A byte read as the decimal number its two hexadecimal digits spell, the way
// the radio stores BCD: 0x23 is 23, a digit above 9 ends the number (0x2A is
// 2; 0xA2 and 0xFF are 0).
int bcdByteValue(std::uint8_t byte);

// `width` bits of the byte at image `address`, from bit `shift` up (bit 0 is
// the least significant): BitField{0x0CEA, 4, 4} is the high nibble of 0x0CEA.
struct BitField
{
    int address;
    int shift = 0;
    int width = 8;

    constexpr std::uint8_t mask() const { return static_cast<std::uint8_t>(((1u << width) - 1u) << shift); }
    int read(const MemoryImage &image) const;
    // Stores the low `width` bits of value; the byte's other bits are kept.
    void write(MemoryImage &image, int value) const;
};

// One entry of a list: the code stored for it and its text.
struct Choice
{
    int code;
    Text text;
};

// Numbers at the end of a list, after its words: codes first to last, each
// shown as code * times + plus with `decimals` decimal places, the same in
// every language. {.first = 1, .last = 9, .times = 30} shows 30, 60 ... 270;
// {.first = 1, .last = 10, .times = 5, .decimals = 1} shows 0.5 ... 5.0.
struct NumberChoices
{
    int first = 0;
    int last = -1; // below first: no numbers
    int times = 1;
    int plus = 0;
    int decimals = 0;
};

// A list control (by objectName) holding one field of the image. The list
// shows `words` and then `numbers`; the selected position stands for the
// code of that entry. Without `bits` the list is only filled, never loaded
// or stored.
struct ListField
{
    static constexpr int NoSelection = -1;

    QStringView control;
    std::optional<BitField> bits = {};
    std::span<const Choice> words = {};
    NumberChoices numbers = {};
    // For fields that do not store their code as it is (such as a level
    // kept with an on bit): the code a stored value shows, NoSelection to
    // show none; and the value stored for a code.
    int (*codeOf)(int stored) = nullptr;
    int (*storedOf)(int code) = nullptr;

    int count() const;
    int codeAt(int position) const; // -1 outside the list
    QStringList items(int languageIndex) const;

    // Image to position: the position of the stored code. A code the list
    // does not offer loads as position 0.
    int load(const MemoryImage &image) const;
    // Position to image. A position outside the list (no selection) leaves
    // the field as it is.
    void store(MemoryImage &image, int position) const;
};

// A check box (by objectName) holding one bit: checked when it is set.
struct CheckField
{
    QStringView control;
    Text text;
    BitField bit; // width 1

    bool load(const MemoryImage &image) const { return bit.read(image) != 0; }
    void store(MemoryImage &image, bool checked) const { bit.write(image, checked ? 1 : 0); }
};

// The text of a control by objectName: a label, button, group box or check
// box, or the window title when it names the form itself.
struct Caption
{
    QStringView control;
    Text text;
};

// One line of a text report of a form's fields: the list or check box (by
// objectName) and the captions of the table that name it, joined by a
// space. Without captions a check box is named by its own text.
struct ReportLine
{
    QStringView field;
    QStringView caption = {};
    QStringView subCaption = {};
};

// Every field of one form, as data. Bytes in `rebuiltBytes` are cleared
// before the fields are stored into them, so that the bits no field covers
// end up 0; every other byte keeps the bits its fields do not cover.
struct FieldTable
{
    std::span<const Caption> captions = {};
    std::span<const ListField> lists = {};
    std::span<const CheckField> checks = {};
    std::span<const int> rebuiltBytes = {};
    // How a report and a screen reader name the fields: a list or check box
    // is named by its line's captions ("P1 Short Press").
    std::span<const ReportLine> lines = {};
    // Names written for controls that show no caption and have no label
    // (a read-only text, a grid), said by a screen reader.
    std::span<const Caption> spokenNames = {};
};

// What a form's controls hold: the position of each list and the state of
// each check box, in the order of the table.
struct FieldValues
{
    QList<int> positions;
    QList<bool> checked;

    bool operator==(const FieldValues &) const = default;
};

FieldValues loadFields(const MemoryImage &image, const FieldTable &table);
// Clears the rebuilt bytes, then stores every list and check box.
void storeFields(MemoryImage &image, const FieldTable &table, const FieldValues &values);

// A line of the report as shown, with the bits of the image it shows.
struct FieldLine
{
    QString caption;
    QString value;
    BitField bits;

    // "caption: value", or "caption:" without a value.
    QString text() const;
};

// The name of a report line in a language: its captions joined by a space,
// each as captionName() gives it; empty when the line has no caption.
QString lineCaption(const FieldTable &table, const ReportLine &line, int languageIndex);

// A line for each of the table's report lines, in a language, with the texts
// the form shows: a list's selected item, On or Off for a check box; a list
// without a selection has no value. Without captions a check box is named by
// its own text.
QList<FieldLine> describeFields(const MemoryImage &image, const FieldTable &table, int languageIndex);

} // namespace wr
