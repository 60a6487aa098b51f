#pragma once

#include "Commands.h"

namespace wr::tool {

// wrpd6t-tool doctor: the connection test of one port.
Command doctorCommand();

} // namespace wr::tool
