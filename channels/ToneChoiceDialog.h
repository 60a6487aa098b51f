#pragma once

#include "ui/FormDialog.h"

class QComboBox;

namespace wr {

// The tone list for a tone column of the selected channels: the radio's
// tones to choose from, or a tone typed as in the grid's tone editor (a
// CTCSS value, D and an octal code with N or I, or the no-tone word).
class ToneChoiceDialog : public FormDialog
{
    Q_OBJECT

public:
    // column: the caption of the tone column; tone: the one shown first.
    ToneChoiceDialog(const Text &column, const QString &tone, Language language, QWidget *parent = nullptr);

    // The tone as the grid's tone editor would store it.
    QString tone() const;

private:
    QComboBox *m_tone;
};

} // namespace wr
