#!/usr/bin/env bash
source "$(dirname "$0")/expect.sh"
check="$1/check-includes.sh"

# A tree in which every include is in order, each rule's limits included.
put model/Atom.h <<<'#include <ext/hash_map>'
put model/Atom.cpp <<<'#include "model/Atom.h"'
put engine/itms.h <<'END'
#include "model/Atom.h"
#include <map>
END
put engine/ItmsRes.h <<<'#include "engine/itms.h"'
put engine/queues.h <<<'// a private header'
put engine/setup.cpp <<<'#include "engine/queues.h"'
put probability/entropy.cpp <<<'#include "engine/ItmsRes.h"'
put query/printouts.cpp <<<'#include "engine/itms.h"'
put language/Parser.h <<'END'
#include <tao/pegtl.hpp>
#include "engine/itms.h"
END
put monitor/Monitor.h <<<'#include "language/Parser.h"'
put app/main.cpp <<<'  #  include "monitor/Monitor.h" // the last of the list'
put tests/model/atom.cpp <<'END'
#include "app/main.h"
#include <gtest/gtest.h>
END
expect 0 '' "$check" "$tree"

# Every kind of include that breaks a rule, planted.
put model/down.cpp <<'END'
#include "engine/itms.h"

#include <fmt/core.h>
END
put engine/down.cpp <<'END'
#include "model/Atom.h"
#include "query/text.h"
END
put probability/private.cpp <<<'#include "engine/queues.h"'
put query/relative.cpp <<'END'
#include "printouts.h"
#include "../engine/itms.h"
END
put language/down.cpp <<<'#include "monitor/Monitor.h"'
put monitor/private.cpp <<'END'
#include "engine/queues.h"
#include <model/Atom.h>
END
put report/library.cpp <<<'#include "query/printouts.h"'
put app/fine.cpp <<<'// #include "tests/support/x.h" is not read'
expect 1 'engine/down.cpp:2: query/text.h: engine/ is above query/
language/down.cpp:1: monitor/Monitor.h: language/ is above monitor/
model/down.cpp:1: engine/itms.h: model/ is above engine/
model/down.cpp:3: fmt/core.h: the library needs the standard library only
monitor/private.cpp:1: engine/queues.h: monitor/ reaches the engine through its public headers only
monitor/private.cpp:2: model/Atom.h: our own headers are included with quotes
probability/private.cpp:1: engine/queues.h: probability/ reaches the engine through its public headers only
query/relative.cpp:1: printouts.h: not a header of ours as seen from the root
query/relative.cpp:2: ../engine/itms.h: not a header of ours as seen from the root
report/library.cpp:1: query/printouts.h: report/ reaches the engine through its public headers only' \
    "$check" "$tree"

rm -r "${tree:?}"/*
expect 2 "check-includes.sh: no source below $tree" "$check" "$tree"
finish
