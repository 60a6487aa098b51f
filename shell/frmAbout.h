#pragma once

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace wr {

// Names the software, its version and date, with a short legal notice.
class frmAbout : public QDialog
{
    Q_OBJECT

public:
    explicit frmAbout(int language, QWidget *parent = nullptr);

private:
    QLabel *m_image1;
    QLabel *m_label1;
    QPlainTextEdit *m_text1;
    QPushButton *m_command1;
};

} // namespace wr
