#!/usr/bin/env bash
source "$(dirname "$0")/expect.sh"
check="$1/check-words.sh"

# The words are made from pieces here too, so that this file passes the check.
s='sp''ec' S='SP''EC' i='Iss''ue' p='P''art' w='/wo''rk' h='/ho''me'

put docs/fine.md <<END
A special ${s}imen, unspecific; we ${i,,}d a command to one ${p} of it, ${p,,} 2 and ${p} 24.
A frame${w}/flow, ${w}s, ./a${h}stead
END
expect 0 '' "$check" "$tree"

put docs/bad.md <<END
see the $s
all ${S}S
its ${s}ification, in full
$i
as ${p} 2.4 says
run ${w}/main/x
${h}/someone/x
END
put "docs/the-$s.txt" <<<'by its name'
expect 1 "docs/bad.md:1:see the $s
docs/bad.md:2:all ${S}S
docs/bad.md:3:its ${s}ification, in full
docs/the-$s.txt
docs/bad.md:4:$i
docs/bad.md:5:as ${p} 2.4 says
docs/bad.md:6:run ${w}/main/x
docs/bad.md:7:${h}/someone/x" "$check" "$tree"
finish
