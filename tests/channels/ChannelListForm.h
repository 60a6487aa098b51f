#pragma once

#include "TestSuite.h"

#include "channels/frmChannel.h"
#include "core/AppState.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include <memory>

namespace wr::test {

// The base of the suites that drive the channel list as a user meets it:
// shown, active, the grid focused; with the ways a user reaches its cells.
// The form goes before the fixture does.
class ChannelListSuite : public Suite
{
protected:
    void tearDown() override { form.reset(); }

    // Opens the list on the image as it stands; fails the test when the
    // window never became active.
    void openForm()
    {
        form = std::make_unique<frmChannel>(app());
        form->show();
        form->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        form->grid()->setFocus();
    }

    QTableView *grid() const { return form->grid(); }
    QLineEdit *text() const { return form->findChild<QLineEdit *>(QStringLiteral("TxtChannel")); }
    QComboBox *combo(int index) const
    {
        return form->findChild<QComboBox *>(QStringLiteral("CboChannel%1").arg(index));
    }
    QString cell(int row, int column) const { return form->cellText(row, column); }
    void setCurrentCell(int row, int column) const
    {
        grid()->setCurrentIndex(grid()->model()->index(row, column));
    }
    QPoint cellCentre(int row, int column) const
    {
        const QModelIndex index = grid()->model()->index(row, column);
        grid()->scrollTo(index);
        return grid()->visualRect(index).center();
    }
    void click(int row, int column, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(grid()->viewport(), button, modifiers, cellCentre(row, column));
    }
    // The cell made current from the keyboard, then Enter: its editor opens.
    void enterCell(int row, int column)
    {
        setCurrentCell(row, column);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Return);
    }

    std::unique_ptr<frmChannel> form;
};

} // namespace wr::test
