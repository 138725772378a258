// The commands of qor, each defined in a file of its name.
#pragma once

#include "front/cli/command.h"

namespace qor::cli {

extern const Command tour_command;
extern const Command map_command;
extern const Command random_command;
extern const Command fit_command;
extern const Command stats_command;

}  // namespace qor::cli
