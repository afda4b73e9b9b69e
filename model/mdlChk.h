// The model checker, base of the engine.
#pragma once

#include "model/DataManager.h"

/// A checker over the active model. It adds nothing to the registry it derives from.
class mdlChk : public DataManager {};
