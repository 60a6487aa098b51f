#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace wr {

// Chooses the interface language. It opens in the language in use and
// selects it; after OK, chosenLanguage() is the one picked. The main window
// switches to it and re-captions itself when the form closes, and the
// settings store keeps the choice at exit.
class LanguageForm : public QDialog
{
    Q_OBJECT

public:
    explicit LanguageForm(int language, QWidget *parent = nullptr);

    int chosenLanguage() const { return m_chosen; }

private:
    void CmdOK_Click();

    QLabel *m_lblLang;
    QComboBox *m_cboLang;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
    int m_chosen;
};

} // namespace wr
