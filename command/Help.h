#pragma once

#include <string>

#include "command/Commands.h"

namespace vantrel {

/// How a command is used, on one line: "vantrelctl get NAME [--stored]".
std::string usageOf(const Command& command);

/// What `--help` tells, of all commands or of one.
std::string help();
std::string helpOf(const Command& command);

}  // namespace vantrel
