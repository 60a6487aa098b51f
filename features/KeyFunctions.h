#pragma once

#include "core/ImageFields.h"

#include <array>
#include <cstddef>
#include <utility>

namespace wr {

// What a programmable key of the radio does, as a 4-bit code. Each of the
// seven keys P1-P7 has one byte in row 206 (0x0CE8-0x0CEE): the function of
// a long press in the high nibble, of a short press in the low nibble. P3 is
// also the side key of the optional features, whose two lists offer only
// some of the functions, in their own order.
//
// This table is the one description of those codes; every list of key
// functions, in either dialog, is derived from it.
struct KeyFunction
{
    static constexpr int NotOffered = -1;

    int code;
    Text text;
    bool longPress;        // offered for a long press of P1-P7 (at position = code)
    bool shortPress;       // offered for a short press of P1-P7 (at position = code)
    int sideLongPosition;  // position in the side key's long press list
    int sideShortPosition; // position in the side key's short press list
};

inline constexpr int NoOffer = KeyFunction::NotOffered;
inline constexpr KeyFunction KeyFunctions[]{
    {0, {u"No Set", u"无定义", u"無定義"}, true, true, 0, 0},
    {1, {u"High/Low Power", u"高/低功率", u"高/低功率"}, true, true, 1, 1},
    {2, {u"Scan", u"扫描", u"掃描"}, true, true, NoOffer, 2},
    {3, {u"Backlight", u"背光灯", u"背光燈"}, true, true, 2, 3},
    {4, {u"VOX", u"声控", u"聲控"}, true, true, 3, 4},
    {5, {u"Power Prompt", u"电量显示", u"電量顯示"}, true, true, NoOffer, NoOffer},
    {6, {u"Scan Add/Del", u"扫描添加/删除", u"掃描添加/刪除"}, true, true, 4, 5},
    {7, {u"Vol +", u"音量+", u"音量+"}, true, true, NoOffer, NoOffer},
    {8, {u"Vol -", u"音量-", u"音量-"}, true, true, NoOffer, NoOffer},
    {9, {u"Monitor", u"监听", u"監聽"}, true, false, 5, NoOffer},
    {10, {u"1750", u"1750", u"1750"}, true, false, 6, NoOffer},
    {11, {u"Key Lock", u"键盘锁", u"鍵盤鎖"}, true, false, NoOffer, NoOffer},
};

// The four lists a key function can be chosen from.
enum class KeyList { LongPress, ShortPress, SideLongPress, SideShortPress };

namespace keyfunctions {

constexpr int positionIn(const KeyFunction &function, KeyList list)
{
    switch (list) {
    case KeyList::LongPress:
        return function.longPress ? function.code : NoOffer;
    case KeyList::ShortPress:
        return function.shortPress ? function.code : NoOffer;
    case KeyList::SideLongPress:
        return function.sideLongPosition;
    case KeyList::SideShortPress:
        return function.sideShortPosition;
    }
    return NoOffer;
}

constexpr std::size_t countIn(KeyList list)
{
    std::size_t count = 0;
    for (const KeyFunction &function : KeyFunctions)
        count += positionIn(function, list) != NoOffer ? 1 : 0;
    return count;
}

// True when the offered functions fill positions 0 .. count - 1, each once.
constexpr bool positionsAreWhole(KeyList list)
{
    for (std::size_t position = 0; position < countIn(list); ++position) {
        int holders = 0;
        for (const KeyFunction &function : KeyFunctions)
            holders += positionIn(function, list) == int(position) ? 1 : 0;
        if (holders != 1)
            return false;
    }
    return true;
}

constexpr Choice choiceAt(KeyList list, std::size_t position)
{
    for (const KeyFunction &function : KeyFunctions) {
        if (positionIn(function, list) == int(position))
            return {function.code, function.text};
    }
    return {KeyFunctions[0].code, KeyFunctions[0].text}; // unreachable: positionsAreWhole
}

template <KeyList List>
constexpr auto choices()
{
    static_assert(positionsAreWhole(List), "a key function list has a gap or a position twice");
    return []<std::size_t... Position>(std::index_sequence<Position...>) {
        return std::array<Choice, sizeof...(Position)>{choiceAt(List, Position)...};
    }(std::make_index_sequence<countIn(List)>{});
}

} // namespace keyfunctions

// Captions both dialogs give their key lists.
namespace KeyWords {
inline constexpr Text KeySetting{u"Key Setting", u"键定义", u"鍵定義"};
inline constexpr Text LongPress{u"Long Press", u"长按", u"長按"};
inline constexpr Text ShortPress{u"Short Press", u"短按", u"短按"};
} // namespace KeyWords

// The lists, in list order, as the dialogs offer them.
inline constexpr auto LongPressChoices = keyfunctions::choices<KeyList::LongPress>();
inline constexpr auto ShortPressChoices = keyfunctions::choices<KeyList::ShortPress>();
inline constexpr auto SideLongPressChoices = keyfunctions::choices<KeyList::SideLongPress>();
inline constexpr auto SideShortPressChoices = keyfunctions::choices<KeyList::SideShortPress>();

} // namespace wr
