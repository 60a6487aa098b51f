#include "shell/QtTranslations.h"

#include "core/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace wr {

namespace {

struct Installed
{
    std::unique_ptr<QTranslator> translator;
    int languageIndex = -1;
};

Installed &installed()
{
    static Installed instance;
    return instance;
}

} // namespace

void InstallQtTranslations(int languageIndex)
{
    Installed &current = installed();
    if (current.languageIndex == languageIndex)
        return;
    if (current.translator) {
        QCoreApplication::removeTranslator(current.translator.get());
        current.translator.reset();
    }
    current.languageIndex = languageIndex;

    QString catalogue;
    if (languageIndex == SimplifiedChinese)
        catalogue = QStringLiteral("qtbase_zh_CN");
    else if (languageIndex == TraditionalChinese)
        catalogue = QStringLiteral("qtbase_zh_TW");
    if (catalogue.isEmpty())
        return;

    auto translator = std::make_unique<QTranslator>();
    if (translator->load(catalogue, QLibraryInfo::path(QLibraryInfo::TranslationsPath))
        && QCoreApplication::installTranslator(translator.get()))
        current.translator = std::move(translator);
}

int InstalledQtTranslation()
{
    return installed().languageIndex;
}

} // namespace wr
