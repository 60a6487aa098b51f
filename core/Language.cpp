#include "core/Language.h"

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

} // namespace wr
