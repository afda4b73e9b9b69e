#!/usr/bin/env bash
# Prints arguments of itms, a line for each run, with which every verb is at work; at the root of the project, and without quotes.
water="examples/water/station.itms examples/water/stuck-valve.jsonl"
power="examples/power/grid.itms examples/power/shorted-motor.jsonl"
guide="examples/guide/duct.itms examples/guide/afternoon.csv"
circuit="examples/circuits/c17.bench"
cat <<END
advise $water --step 12
check examples/water/station.itms
check examples/power/grid.itms
diagnose $circuit --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 --outputs G22gat=1,G23gat=1
explain $water --step 12
explain $power --format json
export examples/power/grid.itms
fmt --check examples/water/station.itms
graph $water --step 12
query $guide fan.state=beltTorn
report $guide -o -
run $water --format jsonl
run $power --format table --every-step
run $guide --format json
run $guide --keep 2 --max-work 20000 --format jsonl
simulate examples/models/valve.itms --steps 200 --seed 22 --random 3
trace $water --step 12
no-such-verb
END
