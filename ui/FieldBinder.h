#pragma once

#include "core/ImageFields.h"

#include <QList>
#include <QPointer>
#include <QStringList>

class QAbstractButton;
class QComboBox;
class QWidget;

namespace wr {

// Binds a form's FieldTable to its controls, found by objectName among the
// form's children (a caption naming the form itself is its window title).
// Captions go on labels, buttons, check boxes and group boxes; list fields
// need a QComboBox and check fields a check box (any QAbstractButton).
// Every caption also gives the accessible names a screen reader says, in the
// same language: the window's, a button's or group's own, a label's buddy's,
// a field's from its report line, and those the table writes for controls
// without a label.
//
// A control the table names but the form lacks, or one of the wrong kind, is
// reported with a warning when the binder is made and listed by
// missingControls(), so a test of the form fails on it; the rest of the
// table works as usual.
class FieldBinder
{
public:
    FieldBinder(QWidget *form, const FieldTable &table);

    QStringList missingControls() const { return m_missing; }

    // Captions, accessible names and list items in a language; a list keeps
    // its position.
    void caption(Language language);
    void load(const MemoryImage &image);
    void store(MemoryImage &image) const;

private:
    template <typename Control>
    Control *find(QStringView name, const char *kind);
    void nameControls(Language language);

    QWidget *m_form;
    FieldTable m_table;
    QList<QPointer<QWidget>> m_captions; // one per caption, null for the window title
    QList<QPointer<QComboBox>> m_lists;
    QList<QPointer<QAbstractButton>> m_checks;
    QList<QPointer<QWidget>> m_lineFields; // one per report line
    QList<QPointer<QWidget>> m_spoken;     // one per spoken name
    QStringList m_missing;
};

} // namespace wr
