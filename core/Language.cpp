#include "core/Language.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace wr {

QString ModelName()
{
    return QStringLiteral("WR-PD6T");
}

QString Text::in(int languageIndex) const
{
    const QStringView text = view(languageIndex);
    return QString::fromRawData(reinterpret_cast<const QChar *>(text.utf16()), text.size());
}

bool Text::matches(QStringView text) const
{
    for (const QStringView candidate : m_texts) {
        if (text == candidate)
            return true;
    }
    return false;
}

QString captionName(const QString &caption)
{
    static const QRegularExpression chineseMnemonic(u"\\(&[^&)]\\)"_s);
    QString text = caption;
    text.remove(chineseMnemonic);
    for (qsizetype i = text.indexOf(u'&'); i >= 0 && i < text.size(); i = text.indexOf(u'&', i + 1))
        text.remove(i, 1); // "&&" keeps one ampersand
    text = text.trimmed();
    while (text.endsWith(u':') || text.endsWith(u'\uFF1A'))
        text.chop(1);
    return text;
}

QString dialogTitle(const Text &command, int languageIndex)
{
    QString title = command.in(languageIndex);
    if (title.endsWith(u'…'))
        title.chop(1);
    return title;
}

} // namespace wr
