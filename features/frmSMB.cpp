#include "features/frmSMB.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include <iterator>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr Text Scramble{u"Scramble(&S)", u"扰频(&S)", u"擾頻(&S)"};
constexpr Caption Captions[]{
    {u"frmSMB", Scramble},
    {u"Frame2", Scramble},
    {u"CmdOK", Words::OK},
};
constexpr FieldTable Fields{.captions = Captions};

// The scrambler's inversion frequency of S0 ... S7.
constexpr QStringView Frequencies[]{u"3.3K", u"3.2K", u"3.1K", u"3.0K", u"2.9K", u"2.8K", u"2.7K", u"2.6K"};

} // namespace

frmSMB::frmSMB(MemoryImage &image, Language language, QWidget *parent)
    : FieldDialog(image, language, parent)
{
    setObjectName(u"frmSMB"_s);
    auto *frame = new QGroupBox;
    frame->setObjectName(u"Frame2"_s);
    auto *table = new QGridLayout(frame);
    table->setHorizontalSpacing(24);
    table->setColumnStretch(0, 1);
    table->setColumnStretch(3, 1);
    for (int index = 0; index < int(std::size(Frequencies)); ++index) {
        auto *label = new QLabel(u"S"_s + QString::number(index));
        label->setObjectName(u"Label1"_s + QString::number(index));
        auto *field = new QLineEdit(Frequencies[index].toString());
        field->setObjectName(u"Txtsmb"_s + QString::number(index));
        // Read-only takes every key, Backspace, Delete and pasting included.
        field->setReadOnly(true);
        field->setAlignment(Qt::AlignCenter);
        field->setFixedWidth(field->fontMetrics().horizontalAdvance(u"0.0KW"_s) + 16);
        label->setBuddy(field);
        table->addWidget(label, index, 1);
        table->addWidget(field, index, 2);
    }
    frame->setMinimumWidth(180);
    auto *content = new QVBoxLayout;
    content->addWidget(frame);
    layOutWithButtons(content, u"CmdOK"_s, {}, 0);
    bindFields(Fields);
}

} // namespace wr
