#pragma once

#include "ui/FormDialog.h"

namespace wr {

// Names the software, its version and date, with a short legal notice.
class frmAbout : public FormDialog
{
    Q_OBJECT

public:
    explicit frmAbout(Language language, QWidget *parent = nullptr);
};

} // namespace wr
