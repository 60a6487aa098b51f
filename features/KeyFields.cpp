#include "features/KeyFields.h"

#include "features/KeyFunctions.h"

#include <array>

namespace wr {

namespace {

// Key i's controls and label; the label reads "P1：" ... "P7：", with a
// full-width colon in every language.
constexpr QStringView LongNames[KeyCount]{u"CobKeyL0", u"CobKeyL1", u"CobKeyL2", u"CobKeyL3",
                                          u"CobKeyL4", u"CobKeyL5", u"CobKeyL6"};
constexpr QStringView ShortNames[KeyCount]{u"CobKeyS0", u"CobKeyS1", u"CobKeyS2", u"CobKeyS3",
                                           u"CobKeyS4", u"CobKeyS5", u"CobKeyS6"};
constexpr QStringView LabelNames[KeyCount]{u"Label10", u"Label11", u"Label12", u"Label13",
                                           u"Label14", u"Label15", u"Label16"};

constexpr Caption Captions[]{
    {u"frmKey", KeyWords::KeySetting},
    {u"Label10", {u"P1："}},
    {u"Label11", {u"P2："}},
    {u"Label12", {u"P3："}},
    {u"Label13", {u"P4："}},
    {u"Label14", {u"P5："}},
    {u"Label15", {u"P6："}},
    {u"Label16", {u"P7："}},
    {u"Label20", KeyWords::LongPress},
    {u"Label21", KeyWords::ShortPress},
    {u"CmdOK", Words::OK},
    {u"CmdCannel", Words::Cancel},
};

constexpr std::array<ListField, 2 * KeyCount> Lists = [] {
    std::array<ListField, 2 * KeyCount> lists{};
    for (int key = 0; key < KeyCount; ++key) {
        lists[std::size_t(2 * key)] = {.control = LongNames[key],
                                       .bits = BitField{FirstKeyAddress + key, 4, 4},
                                       .words = LongPressChoices};
        lists[std::size_t(2 * key + 1)] = {.control = ShortNames[key],
                                           .bits = BitField{FirstKeyAddress + key, 0, 4},
                                           .words = ShortPressChoices};
    }
    return lists;
}();

constexpr std::array<int, KeyCount> Rebuilt = [] {
    std::array<int, KeyCount> bytes{};
    for (int key = 0; key < KeyCount; ++key)
        bytes[std::size_t(key)] = FirstKeyAddress + key;
    return bytes;
}();

constexpr std::array<ReportLine, 2 * KeyCount> Report = [] {
    std::array<ReportLine, 2 * KeyCount> lines{};
    for (int key = 0; key < KeyCount; ++key) {
        lines[std::size_t(2 * key)] = {LongNames[key], LabelNames[key], u"Label20"};
        lines[std::size_t(2 * key + 1)] = {ShortNames[key], LabelNames[key], u"Label21"};
    }
    return lines;
}();

} // namespace

constexpr FieldTable KeyFields{.captions = Captions, .lists = Lists, .rebuiltBytes = Rebuilt, .lines = Report};

QList<FieldLine> describeKeys(const MemoryImage &image, int languageIndex)
{
    return describeFields(image, KeyFields, languageIndex);
}

} // namespace wr
