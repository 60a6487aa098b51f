#pragma once

#include <QIcon>

namespace wr {

// The program's icon (a hand-held radio on a blue tile), used by the main
// window, the language form and the about box. It is drawn at the size asked
// for, so a window icon costs a few small pixmaps instead of decoding a large
// image; resources/wrpd6t.png and .svg are the same picture for the desktop
// entry.
QIcon AppIcon();

// The pictures of the toolbar buttons and of the tree of editors.
enum class CommandIcon {
    New,           // a blank page
    Open,          // an open folder
    Save,          // a diskette
    Print,         // a printer
    Read,          // data coming out of the radio
    Write,         // data going into the radio
    About,         // an "i" on a blue disc
    ChannelList,   // a table: the channel list
    OptionalFeatures, // sliders: the radio's optional features
};
QIcon CommandIconFor(CommandIcon which);

} // namespace wr
