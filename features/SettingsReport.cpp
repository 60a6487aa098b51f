#include "features/SettingsReport.h"

#include "features/KeyFields.h"
#include "features/OptionFields.h"

namespace wr {

QList<FieldLine> describeSettingFields(const MemoryImage &image, int languageIndex)
{
    return describeOptions(image, languageIndex) + describeKeys(image, languageIndex);
}

QStringList describeSettings(const MemoryImage &image, int languageIndex)
{
    QStringList lines;
    for (const FieldLine &line : describeSettingFields(image, languageIndex))
        lines.append(line.text());
    return lines;
}

} // namespace wr
