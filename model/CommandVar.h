// A variable that is set from outside: a command.
#pragma once

#include "model/StateVar.h"

/// A command variable; its `type` is "Command". Being a StateVar, it stands in its component's `stateVars`
/// as well as in its `commandVars`.
class CommandVar : public StateVar {
public:
    using StateVar::StateVar;
};
