#include "shell/AppIcon.h"

namespace wr {

QIcon AppIcon()
{
    static const QIcon icon(QStringLiteral(":/icons/wrpd6t.png"));
    return icon;
}

} // namespace wr
