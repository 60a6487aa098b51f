#include "ui/FieldBinder.h"

#include "ui/Accessible.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QtDebug>

namespace wr {

template <typename Control>
Control *FieldBinder::find(QStringView name, const char *kind)
{
    auto *control = m_form->findChild<Control *>(name.toString());
    if (!control) {
        m_missing.append(name.toString());
        qWarning("%s has no %s named %s", qPrintable(m_form->objectName()), kind, qPrintable(name.toString()));
    }
    return control;
}

FieldBinder::FieldBinder(QWidget *form, const FieldTable &table)
    : m_form(form)
    , m_table(table)
{
    for (const Caption &caption : table.captions) {
        QWidget *control = nullptr;
        if (caption.control != form->objectName()) {
            control = find<QWidget>(caption.control, "control");
            if (control && !qobject_cast<QLabel *>(control) && !qobject_cast<QAbstractButton *>(control)
                && !qobject_cast<QGroupBox *>(control)) {
                m_missing.append(caption.control.toString());
                qWarning("%s: %s cannot show a caption", qPrintable(form->objectName()),
                         qPrintable(caption.control.toString()));
                control = nullptr;
            }
        }
        m_captions.append(control);
    }
    for (const ListField &list : table.lists)
        m_lists.append(find<QComboBox>(list.control, "list"));
    for (const CheckField &check : table.checks)
        m_checks.append(find<QAbstractButton>(check.control, "check box"));
    // The fields themselves are found above; a line only names them.
    for (const ReportLine &line : table.lines)
        m_lineFields.append(form->findChild<QWidget *>(line.field.toString()));
    for (const Caption &name : table.spokenNames)
        m_spoken.append(find<QWidget>(name.control, "control"));
}

void FieldBinder::caption(Language language)
{
    for (qsizetype i = 0; i < m_captions.size(); ++i) {
        const QString text = m_table.captions[std::size_t(i)].text.in(language);
        QWidget *control = m_captions.at(i);
        if (m_table.captions[std::size_t(i)].control == m_form->objectName()) {
            m_form->setWindowTitle(text);
            m_form->setAccessibleName(captionName(text));
        } else if (auto *label = qobject_cast<QLabel *>(control)) {
            label->setText(text);
        } else if (auto *button = qobject_cast<QAbstractButton *>(control)) {
            button->setText(text);
            button->setAccessibleName(captionName(text));
        } else if (auto *group = qobject_cast<QGroupBox *>(control)) {
            group->setTitle(text);
            group->setAccessibleName(captionName(text));
        }
    }
    for (qsizetype i = 0; i < m_lists.size(); ++i) {
        if (QComboBox *combo = m_lists.at(i)) {
            const int position = combo->currentIndex();
            combo->clear();
            combo->addItems(m_table.lists[std::size_t(i)].items(language));
            combo->setCurrentIndex(position);
        }
    }
    for (qsizetype i = 0; i < m_checks.size(); ++i) {
        if (QAbstractButton *check = m_checks.at(i))
            check->setText(m_table.checks[std::size_t(i)].text.in(language));
    }
    nameControls(language);
}

// What a screen reader says for each control: a label names its buddy, a
// report line its field, in place of the label ("P1 Short Press" rather
// than "P1"), and a control without a label is named as written for it.
void FieldBinder::nameControls(Language language)
{
    nameControlsAfterLabels(m_form);
    for (qsizetype i = 0; i < m_lineFields.size(); ++i) {
        const QString name = lineCaption(m_table, m_table.lines[std::size_t(i)], language);
        if (QWidget *field = m_lineFields.at(i); field && !name.isEmpty())
            field->setAccessibleName(name);
    }
    for (qsizetype i = 0; i < m_spoken.size(); ++i) {
        if (QWidget *control = m_spoken.at(i))
            control->setAccessibleName(m_table.spokenNames[std::size_t(i)].text.in(language));
    }
    nameListTexts(m_form);
}

void FieldBinder::load(const MemoryImage &image)
{
    const FieldValues values = loadFields(image, m_table);
    for (qsizetype i = 0; i < m_lists.size(); ++i) {
        if (QComboBox *combo = m_lists.at(i))
            combo->setCurrentIndex(values.positions.at(i));
    }
    for (qsizetype i = 0; i < m_checks.size(); ++i) {
        if (QAbstractButton *check = m_checks.at(i))
            check->setChecked(values.checked.at(i));
    }
}

// What the controls show goes in through storeFields, the path the field
// table tests check. A list the form lacks counts as showing no selection,
// which leaves its field as it is (0 in a rebuilt byte); a check box the
// form lacks counts as showing its bit as the image holds it.
void FieldBinder::store(MemoryImage &image) const
{
    FieldValues values;
    for (const QComboBox *combo : m_lists)
        values.positions.append(combo ? combo->currentIndex() : ListField::NoSelection);
    for (qsizetype i = 0; i < m_checks.size(); ++i) {
        const QAbstractButton *check = m_checks.at(i);
        values.checked.append(check ? check->isChecked() : m_table.checks[std::size_t(i)].load(image));
    }
    storeFields(image, m_table, values);
}

} // namespace wr
