// The diff subcommand: written later in this change.
#include "Commands.h"
namespace wr::tool {
QList<Command> diffCommands() { return {}; }
}
