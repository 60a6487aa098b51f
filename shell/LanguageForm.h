#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace wr {

// Chooses the interface language. OK stores the chosen index in
// LanguageIndex; the main window re-captions itself when the form closes and
// the settings store keeps the choice at exit.
class LanguageForm : public QDialog
{
    Q_OBJECT

public:
    explicit LanguageForm(QWidget *parent = nullptr);

private:
    void CmdOK_Click();

    QLabel *m_lblLang;
    QComboBox *m_cboLang;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
};

} // namespace wr
