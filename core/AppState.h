#pragma once

#include "core/BandLimits.h"
#include "core/MemoryImage.h"

#include <QString>
#include <QStringList>

namespace wr {

class SettingsStore;

// Process-wide state of the programming software. It exists once, lives on
// the user-interface thread and is read and written directly by every form;
// there is no other copy of the radio's data.
struct AppState
{
    MemoryImage image;

    quint8 LanguageIndex = 1;  // 0 English, 1 Simplified Chinese, 2 Traditional Chinese
    quint8 PortNumber = 1;     // serial port "COM" + PortNumber
    quint8 ModelIndex = 1;     // stored model variant 0-15; no other effect
    QString CurrentFileName = QStringLiteral("Untitled");
    QString AppFolder;         // the program's folder, with a trailing separator
    BandLimitArray BandLimits = DefaultBandLimits;
    QStringList ToneTable;
    quint8 LinkDirection = 0;  // 0 = next transfer reads the radio, 1 = writes it

    quint8 ChannelGridRows = 129;      // header row + 128 channels
    quint8 ChannelGridRowsShown = 129;
    quint8 ChannelGridColumns = 9;
    quint8 ChannelCursor = 0;          // current grid row = channel number
    quint8 GridColumn = 0;
    quint8 FormOpenFlags = 1;          // bit 0: channel list open

    static constexpr quint8 ChannelListOpen = 0x01;

    // Recomputes BandLimits from row 416 of the image.
    void LoadBandLimits();
};

// The one instance of the process. Tests reset it with `app() = AppState{}`.
AppState &app();

// The start-up steps that need no window, in this order: settings, tone
// table, grid sizes and file name, band limit defaults, then a fresh image
// with its snapshot (the defaults are worked out before the fresh image
// erases row 416 again).
void StartUp(AppState &state, const SettingsStore &settings);

// Names the program for QStandardPaths and QSettings ("wrpd6t", no
// organisation), so the GUI, the command-line tool and the virtual radio
// share one configuration and data folder. Call right after creating the
// Q*Application.
void InitApplicationIdentity();

// The program's version as the build names it: the project version in CMake.
QString ProgramVersion();

// Writes Model, language and gbPort back to the settings store.
void SaveSettings(const AppState &state, SettingsStore &settings);

} // namespace wr
