// A variable that is set from outside: a command.
#pragma once

#include "model/StateVar.h"

/// A command variable. Being a StateVar it stands in its component's `stateVars` too.
class CommandVar : public StateVar {};
