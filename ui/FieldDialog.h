#pragma once

#include "ui/FormDialog.h"

namespace wr {

class MemoryImage;

// A modal editor of fields of the image, in one language. The dialog keeps
// no copy of the data: it loads its controls from the image when it binds
// them, OK stores every field back and closes, and Cancel, Esc or the close
// box close it without storing.
//
// A derived dialog creates its controls with their objectNames, lays them
// out with the buttons, then binds its field tables:
//
//   frmExample::frmExample(MemoryImage &image, Language language, QWidget *parent)
//       : FieldDialog(image, language, parent)
//   {
//       setObjectName(u"frmExample"_s);
//       ... controls and layout ...
//       layOutWithButtons(content, u"CmdOK"_s, u"CmdCancel"_s);
//       bindFields(ExampleFields);
//   }
class FieldDialog : public FormDialog
{
    Q_OBJECT

public:
    FieldDialog(MemoryImage &image, Language language, QWidget *parent = nullptr);
    ~FieldDialog() override;

    MemoryImage &image() const { return m_image; }

    // Stores every field, then closes the dialog as accepted.
    void accept() override;

protected:
    // Captions the table's controls and fills its lists in the dialog's
    // language, then loads them from the image.
    void bindFields(const FieldTable &table);
    // Stores every bound field; a dialog with more to store (a grid)
    // extends it.
    virtual void storeFields();

private:
    MemoryImage &m_image;
};

} // namespace wr
