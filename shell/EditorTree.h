#pragma once

#include <QTreeWidget>

namespace wr {

// The main window's tree of editors. Enter and Space on a node run it as a
// click does (nodeChosen), so the tree works from the keyboard; and it shows
// where the focus is: with the focus its current node is highlighted and
// framed, without it the node is marked in a quieter colour.
class EditorTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit EditorTree(QWidget *parent = nullptr);

Q_SIGNALS:
    void nodeChosen(QTreeWidgetItem *node);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void showFocus(bool focused);
};

} // namespace wr
