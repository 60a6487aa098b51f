#pragma once

#include "core/Language.h"
#include "ui/FieldBinder.h"

#include <QDialog>

#include <vector>

class QAbstractButton;
class QHBoxLayout;
class QLayout;
class QPushButton;

namespace wr {

// A modal dialog in one interface language. Its texts come from caption
// tables (the window title, labels, buttons, group boxes and the items of
// lists, by objectName), and its OK and Cancel buttons sit in a row at the
// bottom right, OK the default button. FieldDialog adds fields of the image.
//
//   frmExample::frmExample(Language language, QWidget *parent)
//       : FormDialog(language, parent)
//   {
//       setObjectName(u"frmExample"_s);
//       ... controls, in the order the Tab key visits them ...
//       layOutWithButtons(content, u"CmdOK"_s, u"CmdCancel"_s);
//       caption(ExampleTexts);
//   }
class FormDialog : public QDialog
{
    Q_OBJECT

public:
    explicit FormDialog(Language language, QWidget *parent = nullptr);
    ~FormDialog() override;

    Language language() const { return m_language; }
    // Controls the captioned tables name but the dialog lacks; empty when whole.
    QStringList missingControls() const;

protected:
    // Names the text boxes of list boxes made editable after captioning.
    void showEvent(QShowEvent *event) override;

    struct ButtonRow
    {
        QHBoxLayout *layout;
        QPushButton *ok;
        QPushButton *cancel; // null in a dialog with OK alone
    };

    // Captions the table's controls and fills its lists in the dialog's
    // language; the binder stays with the dialog.
    FieldBinder &caption(const FieldTable &table);
    const std::vector<FieldBinder> &binders() const { return m_binders; }

    // OK accepts, Cancel (when there is one) rejects; OK is the default.
    void connectButtons(QAbstractButton *ok, QAbstractButton *cancel);
    // A row with the OK button and, unless cancelName is empty, the Cancel
    // button at its right, made with these objectNames and connected as
    // connectButtons does. Made after the other controls, the buttons come
    // last in the Tab order.
    ButtonRow makeButtonRow(const QString &okName, const QString &cancelName = {});
    // Lays the dialog out at a fixed size: `content`, and under it the
    // button row, `gap` pixels further from it than the rows of a layout
    // are from each other.
    ButtonRow layOutWithButtons(QLayout *content, const QString &okName, const QString &cancelName = {}, int gap = 4);

    // A new control of the dialog, or of one of its groups, by objectName.
    template <typename Control>
    Control *makeControl(const QString &name, QWidget *parent = nullptr)
    {
        auto *control = new Control(parent ? parent : this);
        control->setObjectName(name);
        return control;
    }

private:
    Language m_language;
    std::vector<FieldBinder> m_binders;
};

} // namespace wr
