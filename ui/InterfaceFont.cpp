#include "ui/InterfaceFont.h"

#include "core/Language.h"

#include <QApplication>
#include <QFont>
#include <QWidget>

namespace wr {

void useInterfaceFont(int languageIndex)
{
    // The platform's family, as it was before the first call added a face.
    static const QString platformFamily = QApplication::font().family();
    const QString chinese = languageIndex == TraditionalChinese ? QStringLiteral("Noto Sans CJK TC")
                                                                : QStringLiteral("Noto Sans CJK SC");
    QFont font = QApplication::font();
    font.setFamilies({platformFamily, chinese});
    QApplication::setFont(font);
    // Windows made later take the application font. Qt (6.4) does not pass
    // a changed list of families on to the widgets that exist already, but
    // a window passes its own font on to its children.
    const QList<QWidget *> windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows)
        window->setFont(font);
}

} // namespace wr
