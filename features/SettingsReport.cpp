#include "features/SettingsReport.h"

#include "features/KeyFields.h"
#include "features/OptionFields.h"

namespace wr {

QStringList describeSettings(const MemoryImage &image, int languageIndex)
{
    return describeOptions(image, languageIndex) + describeKeys(image, languageIndex);
}

} // namespace wr
