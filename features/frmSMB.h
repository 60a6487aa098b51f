#pragma once

#include "ui/FieldDialog.h"

namespace wr {

// The voice scrambler's eight settings, S0 to S7, with the frequency of
// each. A fixed table for the user's reference: the fields cannot be
// changed and the form neither reads nor writes the image.
class frmSMB : public FieldDialog
{
    Q_OBJECT

public:
    frmSMB(MemoryImage &image, Language language, QWidget *parent = nullptr);
};

} // namespace wr
