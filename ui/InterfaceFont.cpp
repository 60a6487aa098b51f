#include "ui/InterfaceFont.h"

#include "core/Language.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>
#include <QWidget>

namespace wr {

void useInterfaceFont(int languageIndex)
{
    // The family the platform's font really is ("Sans Serif" is only an
    // alias, which a list of families passes over), as it was before the
    // first call. Each language gets a list with a first family of its own:
    // Qt (6.4) keeps one font engine per first family, whatever follows it.
    static const QString platformFamily = QFontInfo(QApplication::font()).family();
    QStringList families;
    switch (languageIndex) {
    case SimplifiedChinese:
        families = {QStringLiteral("Noto Sans CJK SC"), platformFamily};
        break;
    case TraditionalChinese:
        families = {QStringLiteral("Noto Sans CJK TC"), platformFamily};
        break;
    default:
        families = {platformFamily, QStringLiteral("Noto Sans CJK SC")};
        break;
    }
    QFont font = QApplication::font();
    font.setFamilies(families);
    QApplication::setFont(font);
    // Windows made later take the application font. Qt (6.4) does not pass
    // a changed list of families on to the widgets that exist already, but
    // a window passes its own font on to its children.
    const QList<QWidget *> windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows)
        window->setFont(font);
}

} // namespace wr
