#include "ui/FieldDialog.h"

namespace wr {

FieldDialog::FieldDialog(MemoryImage &image, Language language, QWidget *parent)
    : FormDialog(language, parent)
    , m_image(image)
{
}

FieldDialog::~FieldDialog() = default;

void FieldDialog::bindFields(const FieldTable &table)
{
    caption(table).load(m_image);
}

void FieldDialog::storeFields()
{
    for (const FieldBinder &binder : binders())
        binder.store(m_image);
}

void FieldDialog::accept()
{
    storeFields();
    QDialog::accept();
}

} // namespace wr
