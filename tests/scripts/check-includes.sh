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
put language/syntax/Parser.h <<'END'
#include <tao/pegtl.hpp>
#include "engine/itms.h"
END
put language/Reader.h <<<'#include "language/syntax/Parser.h"'
put monitor/track/Tracker.h <<<'#include "language/Reader.h"'
put app/main.cpp <<<'  #  include "monitor/track/Tracker.h" // the last of the list'
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
#include "plant/Model.h"
#include "text/File.h"
END
put engine/relative.cpp <<'END'
#include "printouts.h"
#include "../engine/itms.h"
END
put language/syntax/down.cpp <<'END'
#include "language/meaning/Types.h"
#include "language/Reader.h"
END
put monitor/labels/private.cpp <<'END'
#include "engine/queues.h"
#include <model/Atom.h>
END
put monitor/step/down.cpp <<<'#include "monitor/track/Tracker.h"'
put report/down.cpp <<<'#include "app/main.h"'
put app/fine.cpp <<<'// #include "tests/support/x.h" is not read'
expect 1 'engine/down.cpp:2: plant/Model.h: engine/ is above plant/
engine/down.cpp:3: text/File.h: the library needs the standard library only
engine/relative.cpp:1: printouts.h: not a header of ours as seen from the root
engine/relative.cpp:2: ../engine/itms.h: not a header of ours as seen from the root
language/syntax/down.cpp:1: language/meaning/Types.h: language/syntax/ is above language/meaning/
language/syntax/down.cpp:2: language/Reader.h: language/syntax/ is above language/
model/down.cpp:1: engine/itms.h: model/ is above engine/
model/down.cpp:3: fmt/core.h: the library needs the standard library only
monitor/labels/private.cpp:1: engine/queues.h: monitor/labels/ reaches the engine through its public headers only
monitor/labels/private.cpp:2: model/Atom.h: our own headers are included with quotes
monitor/step/down.cpp:1: monitor/track/Tracker.h: monitor/step/ is above monitor/track/
report/down.cpp:1: app/main.h: report/ is above app/' \
    "$check" "$tree"

rm -r "${tree:?}"/*
expect 2 "check-includes.sh: no source below $tree" "$check" "$tree"
finish
