#include "ui/FieldDialog.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace wr {

FieldDialog::FieldDialog(MemoryImage &image, int language, QWidget *parent)
    : QDialog(parent)
    , m_image(image)
    , m_language(language)
{
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

FieldDialog::~FieldDialog() = default;

QStringList FieldDialog::missingControls() const
{
    QStringList missing;
    for (const FieldBinder &binder : m_binders)
        missing += binder.missingControls();
    return missing;
}

void FieldDialog::bindFields(const FieldTable &table)
{
    FieldBinder &binder = m_binders.emplace_back(this, table);
    binder.caption(m_language);
    binder.load(m_image);
}

void FieldDialog::connectButtons(QAbstractButton *ok, QAbstractButton *cancel)
{
    if (auto *push = qobject_cast<QPushButton *>(ok))
        push->setDefault(true);
    connect(ok, &QAbstractButton::clicked, this, &FieldDialog::accept);
    connect(cancel, &QAbstractButton::clicked, this, &FieldDialog::reject);
}

void FieldDialog::layOutWithButtons(QLayout *content, const QString &okName, const QString &cancelName)
{
    auto *ok = makeControl<QPushButton>(okName);
    auto *cancel = makeControl<QPushButton>(cancelName);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(content);
    layout->addSpacing(4);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connectButtons(ok, cancel);
}

void FieldDialog::storeFields()
{
    for (const FieldBinder &binder : m_binders)
        binder.store(m_image);
}

void FieldDialog::accept()
{
    storeFields();
    QDialog::accept();
}

} // namespace wr
