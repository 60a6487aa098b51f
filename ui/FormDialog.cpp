#include "ui/FormDialog.h"

#include "ui/Accessible.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace wr {

FormDialog::FormDialog(Language language, QWidget *parent)
    : QDialog(parent)
    , m_language(language)
{
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    useSpokenNames();
}

FormDialog::~FormDialog() = default;

QStringList FormDialog::missingControls() const
{
    QStringList missing;
    for (const FieldBinder &binder : m_binders)
        missing += binder.missingControls();
    return missing;
}

void FormDialog::showEvent(QShowEvent *event)
{
    nameListTexts(this);
    QDialog::showEvent(event);
}

FieldBinder &FormDialog::caption(const FieldTable &table)
{
    FieldBinder &binder = m_binders.emplace_back(this, table);
    binder.caption(m_language);
    return binder;
}

void FormDialog::connectButtons(QAbstractButton *ok, QAbstractButton *cancel)
{
    if (auto *push = qobject_cast<QPushButton *>(ok))
        push->setDefault(true);
    connect(ok, &QAbstractButton::clicked, this, &FormDialog::accept);
    if (cancel)
        connect(cancel, &QAbstractButton::clicked, this, &FormDialog::reject);
}

FormDialog::ButtonRow FormDialog::makeButtonRow(const QString &okName, const QString &cancelName)
{
    ButtonRow row{new QHBoxLayout, makeControl<QPushButton>(okName),
                  cancelName.isEmpty() ? nullptr : makeControl<QPushButton>(cancelName)};
    row.layout->addStretch(1);
    row.layout->addWidget(row.ok);
    if (row.cancel)
        row.layout->addWidget(row.cancel);
    connectButtons(row.ok, row.cancel);
    return row;
}

FormDialog::ButtonRow FormDialog::layOutWithButtons(QLayout *content, const QString &okName, const QString &cancelName,
                                                    int gap)
{
    // The content's controls join the dialog before the buttons are made.
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(content);
    const ButtonRow row = makeButtonRow(okName, cancelName);
    if (gap > 0)
        layout->addSpacing(gap);
    layout->addLayout(row.layout);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    return row;
}

} // namespace wr
