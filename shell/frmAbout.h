#pragma once

#include "ui/FormDialog.h"

namespace wr {

// Names the software, its version and date, with a short notice: what the
// program does, what to keep in mind, and the licence it comes under.
class frmAbout : public FormDialog
{
    Q_OBJECT

public:
    explicit frmAbout(Language language, QWidget *parent = nullptr);
};

} // namespace wr
