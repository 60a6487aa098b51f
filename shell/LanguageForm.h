#pragma once

#include "ui/FormDialog.h"

class QComboBox;

namespace wr {

// Chooses the interface language. It opens in the language in use and
// selects it; after OK, chosenLanguage() is the one picked. The main window
// switches to it and re-captions itself when the form closes, and the
// settings store keeps the choice at exit.
class LanguageForm : public FormDialog
{
    Q_OBJECT

public:
    explicit LanguageForm(Language language, QWidget *parent = nullptr);

    // The language the list shows; the one the form opened in while it
    // shows none.
    Language chosenLanguage() const;

private:
    QComboBox *m_cboLang;
};

} // namespace wr
