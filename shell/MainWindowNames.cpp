#include "shell/MainWindowNames.h"

#include "ui/Accessible.h"

#include <QMainWindow>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The toolbar's buttons by objectName, which is also their English tool tip.
struct ButtonName
{
    QStringView button;
    Text name;
};
constexpr ButtonName ButtonNames[]{
    {u"New", {u"New", u"新建", u"新建"}},       {u"Open", {u"Open", u"打开", u"打開"}},
    {u"Save", {u"Save", u"保存", u"保存"}},     {u"Print", {u"Print", u"打印", u"打印"}},
    {u"Read", {u"Read", u"读取", u"讀取"}},     {u"Write", {u"Write", u"写入", u"寫入"}},
    {u"About", {u"About", u"关于", u"關於"}},
};

constexpr Text ToolBarName{u"Toolbar", u"工具栏", u"工具列"};
constexpr Text TreeName{u"Editors", u"编辑项目", u"編輯項目"};

} // namespace

void nameMainWindowParts(QMainWindow *window, Language language)
{
    useSpokenNames(); // for the channel list's child window

    if (auto *toolBar = window->findChild<QToolBar *>(u"tlbActions"_s)) {
        // The title is what a screen reader says for the bar.
        toolBar->setWindowTitle(ToolBarName.in(language));
        for (const ButtonName &entry : ButtonNames) {
            if (auto *button = toolBar->findChild<QToolButton *>(entry.button.toString()))
                button->setAccessibleName(entry.name.in(language));
        }
    }
    if (auto *tree = window->findChild<QTreeWidget *>(u"Tree0"_s))
        tree->setAccessibleName(TreeName.in(language));
}

} // namespace wr
