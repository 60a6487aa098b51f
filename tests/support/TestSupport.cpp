#include "TestSupport.h"

#include "core/AppState.h"
#include "core/ToneCodec.h"

#include <QFile>
#include <QLocale>
#include <QStandardPaths>

namespace wr::test {

void resetProcessState()
{
    QStandardPaths::setTestModeEnabled(true);
    QLocale::setDefault(QLocale::c());
    app() = AppState{};
    app().ToneTable = BuildToneTable(app().LanguageIndex);
    app().image.InitImage();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

MemoryImage freshImage()
{
    MemoryImage image;
    image.InitImage();
    return image;
}

MemoryImage imageOf(const QByteArray &bytes)
{
    MemoryImage image;
    image.setBytes(bytes);
    return image;
}

} // namespace wr::test
