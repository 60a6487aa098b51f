// The dialog base and binder on a small dialog of their own: the image
// loaded into the controls, OK storing and every other way out storing
// nothing, a control the table names but the dialog lacks, and what a
// screen reader says. (The captions in each language are tried on the real
// dialogs: the optional features, key setting, FM radio and scramble forms.)
#include "TestSuite.h"

#include "core/MemoryImage.h"
#include "ui/FieldDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QAccessible>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QVBoxLayout>

using namespace wr;
using namespace Qt::StringLiterals;

namespace {

constexpr Caption Captions[]{
    {u"frmExample", {u"E&xample", u"示例(&X)", u"示例(&X)"}},
    {u"lblMode", {u"Mode:", u"方式：", u"方式："}},
    {u"lblPress", {u"Short Press", u"短按", u"短按"}},
    {u"grpMore", {u"More", u"更多", u"更多"}},
    {u"CmdOK", Words::OK},
    {u"CmdCancel", Words::Cancel},
};
constexpr Choice Modes[]{{0, {u"Slow", u"慢", u"慢"}}, {2, {u"Fast", u"快", u"快"}}};
constexpr Choice OffWord[]{{0, Words::Off}};
constexpr ListField Lists[]{
    {.control = u"cboMode", .bits = BitField{0x0CD1, 0, 2}, .words = Modes},
    {.control = u"cboLevel", .bits = BitField{0x0CD6}, .words = OffWord, .numbers = {.first = 1, .last = 9}},
};
constexpr CheckField Checks[]{{u"chkBeep", {u"Beep", u"哗音", u"嘩音"}, BitField{0x0CD1, 6, 1}}};
constexpr ReportLine Lines[]{{u"cboLevel", u"lblMode", u"lblPress"}, {u"chkBeep"}};
constexpr Caption SpokenNames[]{{u"txtNotes", {u"Notes", u"备注", u"備註"}}};
constexpr FieldTable Fields{
    .captions = Captions, .lists = Lists, .checks = Checks, .lines = Lines, .spokenNames = SpokenNames};

constexpr ListField Missing[]{{.control = u"cboMissing", .bits = BitField{0x0CD8}, .words = OffWord}};
constexpr FieldTable MissingFields{.lists = Missing};

class frmExample : public FieldDialog
{
public:
    frmExample(MemoryImage &image, Language language, bool withMissing = false)
        : FieldDialog(image, language)
    {
        setObjectName(u"frmExample"_s);
        auto *layout = new QVBoxLayout(this);
        const auto add = [layout](QWidget *control, const QString &name) {
            control->setObjectName(name);
            layout->addWidget(control);
        };
        auto *mode = new QLabel;
        add(mode, u"lblMode"_s);
        add(new QComboBox, u"cboMode"_s);
        mode->setBuddy(list(u"cboMode"_s));
        add(new QLabel, u"lblPress"_s);
        add(new QPlainTextEdit, u"txtNotes"_s);
        add(new QGroupBox, u"grpMore"_s);
        add(new QComboBox, u"cboLevel"_s);
        add(new QCheckBox, u"chkBeep"_s);
        add(new QPushButton, u"CmdOK"_s);
        add(new QPushButton, u"CmdCancel"_s);
        bindFields(Fields);
        if (withMissing)
            bindFields(MissingFields);
        connectButtons(findChild<QPushButton *>(u"CmdOK"_s), findChild<QPushButton *>(u"CmdCancel"_s));
    }
    QComboBox *list(const QString &name) const { return findChild<QComboBox *>(name); }
    QCheckBox *beep() const { return findChild<QCheckBox *>(u"chkBeep"_s); }
};

} // namespace

class TestFieldDialog : public test::Suite
{
    Q_OBJECT

private Q_SLOTS:
    void leaving_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("stores");
        QTest::newRow("OK stores") << u"CmdOK"_s << true;
        QTest::newRow("Cancel stores nothing") << u"CmdCancel"_s << false;
        QTest::newRow("the close box stores nothing") << u"close"_s << false;
    }

    // The controls show the image; what the user changes reaches it on OK
    // only, and bits outside the fields stay as they were.
    void leaving()
    {
        QFETCH(QString, how);
        QFETCH(bool, stores);
        MemoryImage image = test::freshImage();
        image.WriteByte(0x0CD1, 0xA2);
        image.WriteByte(0x0CD6, 0x07);
        const MemoryImage before = image;
        frmExample form(image, English);
        form.show();
        QCOMPARE(form.list(u"cboMode"_s)->currentText(), u"Fast"_s);
        QCOMPARE(form.list(u"cboLevel"_s)->currentIndex(), 7);
        QVERIFY(!form.beep()->isChecked());

        form.list(u"cboMode"_s)->setCurrentIndex(0);
        form.list(u"cboLevel"_s)->setCurrentIndex(3);
        form.beep()->setChecked(true);
        if (how == u"close")
            form.close();
        else
            QTest::mouseClick(form.findChild<QPushButton *>(how), Qt::LeftButton);
        QVERIFY(form.isHidden());
        QCOMPARE(form.result(), stores ? QDialog::Accepted : QDialog::Rejected);
        MemoryImage expected = before;
        if (stores) {
            expected.WriteByte(0x0CD1, 0xE0);
            expected.WriteByte(0x0CD6, 0x03);
        }
        QCOMPARE(image.bytes().toHex(), expected.bytes().toHex());
    }

    // A control the table names but the dialog lacks is reported, and its
    // field is left as it is.
    void missingControl()
    {
        MemoryImage image;
        image.WriteByte(0x0CD8, 0x05);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"frmExample has no list named cboMissing"_s));
        frmExample form(image, English, true);
        QCOMPARE(form.missingControls(), QStringList{u"cboMissing"_s});
        form.accept();
        QCOMPARE(image.ReadByte(0x0CD8), 0x05);
    }

    // What a screen reader says, through the interfaces it reads: the title
    // without its mnemonic, a list by its label (not by the item it shows)
    // and keeping its item as value, a field by its line's captions, a text
    // without a label by the name written for it, a check box by its text.
    void spokenNames_data()
    {
        // The dialog, cboMode (its value), cboLevel, txtNotes, chkBeep, OK.
        test::languageRows<QString>({"names"}, {u"Example|Mode (Fast)|Mode Short Press|Notes|Beep|OK"_s,
                                                u"示例|方式 (快)|方式 短按|备注|哗音|确定"_s,
                                                u"示例|方式 (快)|方式 短按|備註|嘩音|確定"_s});
    }

    void spokenNames()
    {
        QFETCH(int, language);
        MemoryImage image;
        image.WriteByte(0x0CD1, 0x02);
        frmExample form(image, Language(language));
        const auto spoken = [&form](const QString &name, QAccessible::Text kind = QAccessible::Name) {
            QWidget *control = name.isEmpty() ? &form : form.findChild<QWidget *>(name);
            return QAccessible::queryAccessibleInterface(control)->text(kind);
        };
        const QStringList heard{spoken({}),
                                spoken(u"cboMode"_s) + u" ("_s + spoken(u"cboMode"_s, QAccessible::Value) + u')',
                                spoken(u"cboLevel"_s), spoken(u"txtNotes"_s), spoken(u"chkBeep"_s),
                                spoken(u"CmdOK"_s)};
        QTEST(heard.join(u'|'), "names");
    }
};

QTEST_MAIN(TestFieldDialog)
#include "TestFieldDialog.moc"
