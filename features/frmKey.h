#pragma once

#include "ui/FieldDialog.h"

namespace wr {

// The key setting dialog: the function of each of the radio's seven
// programmable keys P1-P7 on a long and on a short press (KeyFields.h),
// beside a picture of the radio with the keys marked. OK stores all fourteen
// and closes.
class frmKey : public FieldDialog
{
    Q_OBJECT

public:
    frmKey(MemoryImage &image, Language language, QWidget *parent = nullptr);
};

} // namespace wr
