#include "features/frmOption.h"

#include "features/OptionFields.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace wr {

frmOption::frmOption(MemoryImage &image, Language language, QWidget *parent)
    : FieldDialog(image, language, parent)
{
    setObjectName(u"frmOption"_s);

    // The lists in two columns of label and list, the check boxes under them
    // in the same two columns.
    auto *fields = new QGridLayout;
    fields->setHorizontalSpacing(8);
    fields->setColumnMinimumWidth(2, 16);
    constexpr int LeftRows = 5;
    for (int index = 0; index <= 8; ++index) {
        const int row = index % LeftRows;
        const int column = index < LeftRows ? 0 : 3;
        auto *label = makeControl<QLabel>(u"Label1"_s + QString::number(index));
        auto *list = makeControl<QComboBox>(u"Combo1"_s + QString::number(index));
        label->setBuddy(list);
        fields->addWidget(label, row, column);
        fields->addWidget(list, row, column + 1);
    }
    fields->setRowMinimumHeight(LeftRows, 8);
    for (int index = 0; index <= 5; ++index)
        fields->addWidget(makeControl<QCheckBox>(u"Check1"_s + QString::number(index)), LeftRows + 1 + index / 2,
                          index % 2 == 0 ? 0 : 3, 1, 2);

    // The side key: a long and a short press, under their column headings.
    auto *frame3 = makeControl<QGroupBox>(u"Frame3"_s);
    auto *keys = new QGridLayout(frame3);
    keys->setHorizontalSpacing(8);
    keys->addWidget(makeControl<QLabel>(u"Label22"_s, frame3), 0, 1);
    keys->addWidget(makeControl<QLabel>(u"Label23"_s, frame3), 0, 2);
    auto *sideKey = makeControl<QLabel>(u"Label19"_s, frame3);
    auto *longPress = makeControl<QComboBox>(u"CobKeyL"_s, frame3);
    sideKey->setBuddy(longPress);
    keys->addWidget(sideKey, 1, 0);
    keys->addWidget(longPress, 1, 1);
    keys->addWidget(makeControl<QComboBox>(u"CobKeyS"_s, frame3), 1, 2);
    keys->setColumnStretch(1, 1);
    keys->setColumnStretch(2, 1);

    auto *content = new QVBoxLayout;
    content->addLayout(fields);
    content->addSpacing(4);
    content->addWidget(frame3);
    layOutWithButtons(content, u"CmdOK"_s, u"CmdCannel"_s);

    addHiddenControls();
    bindFields(OptionFields);
}

// Settings of other radios of the family: made, named and filled with their
// texts like the others, but never shown, loaded or stored.
void frmOption::addHiddenControls()
{
    QList<QWidget *> hidden{makeControl<QCheckBox>(u"Check16"_s), makeControl<QCheckBox>(u"Check17"_s),
                            makeControl<QLabel>(u"Label114"_s),   makeControl<QComboBox>(u"Combo114"_s),
                            makeControl<QLabel>(u"lblRadio3"_s),  makeControl<QComboBox>(u"cboRadio3"_s)};
    for (int index = 0; index < 2; ++index)
        hidden << makeControl<QLabel>(u"lblCH"_s + QString::number(index))
               << makeControl<QComboBox>(u"cboCH"_s + QString::number(index));
    auto *frame2 = makeControl<QGroupBox>(u"Frame2"_s);
    makeControl<QLabel>(u"LabKey"_s, frame2);
    makeControl<QComboBox>(u"ComKey"_s, frame2);
    auto *frame4 = makeControl<QGroupBox>(u"Frame4"_s);
    makeControl<QCheckBox>(u"Check2"_s, frame4);
    for (int index = 0; index < 2; ++index) {
        makeControl<QLabel>(u"Label2"_s + QString::number(index), frame4);
        makeControl<QComboBox>(u"Combo2"_s + QString::number(index), frame4);
    }
    hidden << frame2 << frame4;
    for (QWidget *control : std::as_const(hidden))
        control->hide();
}

} // namespace wr
