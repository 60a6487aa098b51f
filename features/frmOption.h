#pragma once

#include "ui/FieldDialog.h"

namespace wr {

// The optional features dialog: squelch, time-out timer, VOX, voice
// prompts, scan mode, key lock, beep, battery save, roger tone, tail
// elimination, backlight, volume, battery display and the side key
// (OptionFields.h). OK stores every field and closes; the caller then
// brings the channel list in step (the dialog knows nothing of it).
//
// A few controls are filled with texts but never loaded, stored or shown:
// settings of other radios of the family that this radio lacks.
class frmOption : public FieldDialog
{
    Q_OBJECT

public:
    frmOption(MemoryImage &image, Language language, QWidget *parent = nullptr);

private:
    void addHiddenControls();
};

} // namespace wr
