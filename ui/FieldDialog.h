#pragma once

#include "ui/FieldBinder.h"

#include <QDialog>

#include <vector>

class QAbstractButton;
class QLayout;

namespace wr {

class MemoryImage;

// A modal editor of fields of the image, in one language. The dialog keeps
// no copy of the data: it loads its controls from the image when it binds
// them, OK stores every field back and closes, and Cancel, Esc or the close
// box close it without storing.
//
// A derived dialog creates its controls with their objectNames, then binds
// its field tables and connects its buttons:
//
//   frmExample::frmExample(MemoryImage &image, int language, QWidget *parent)
//       : FieldDialog(image, language, parent)
//   {
//       setObjectName(u"frmExample"_s);
//       ... controls and layout ...
//       bindFields(ExampleFields);
//       connectButtons(cmdOK, cmdCancel);
//   }
class FieldDialog : public QDialog
{
    Q_OBJECT

public:
    FieldDialog(MemoryImage &image, int language, QWidget *parent = nullptr);
    ~FieldDialog() override;

    MemoryImage &image() const { return m_image; }
    int language() const { return m_language; }
    // Controls the bound tables name but the dialog lacks; empty when whole.
    QStringList missingControls() const;

    // Stores every field, then closes the dialog as accepted.
    void accept() override;

protected:
    // Captions the table's controls and fills its lists in the dialog's
    // language, then loads them from the image.
    void bindFields(const FieldTable &table);
    // OK accepts (storing), Cancel rejects.
    void connectButtons(QAbstractButton *ok, QAbstractButton *cancel);
    // Lays the dialog out at a fixed size: `content`, and under it a row
    // with the OK and Cancel buttons (made with these objectNames) at its
    // right, connected as connectButtons does.
    void layOutWithButtons(QLayout *content, const QString &okName, const QString &cancelName);
    // Stores every bound field; a dialog with more to store (a grid)
    // extends it.
    virtual void storeFields();

    // A new control of the dialog, or of one of its groups, by objectName.
    template <typename Control>
    Control *makeControl(const QString &name, QWidget *parent = nullptr)
    {
        auto *control = new Control(parent ? parent : this);
        control->setObjectName(name);
        return control;
    }

private:
    MemoryImage &m_image;
    int m_language;
    std::vector<FieldBinder> m_binders;
};

} // namespace wr
