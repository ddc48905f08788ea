#!/usr/bin/env bash
# Runs the example programs on examples/data. Reports go to the terminal, numbers and pictures to OUT_DIR.
set -euo pipefail
(($# == 2)) || { echo "usage: run_demo.sh BUILD_DIR OUT_DIR" >&2; exit 1; }
programs=$1/examples
out=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
python=/usr/bin/python3 # Debian's own, which sees Debian's matplotlib

mkdir -p "$out"

printf 'Growth of carbon dioxide in the air (examples/co2_growth.cpp)\n\n'
"$programs/co2_growth" "$here/data/co2_weekly.csv" "$out"

printf '\nLogarithmic tone curve over a photograph (examples/tone_curve.cpp)\n\n'
"$programs/tone_curve" "$here/data/photo.pgm" "$out"

printf '\nDaylight from the equator to the Arctic (examples/daylight.cpp)\n\n'
"$programs/daylight" "$here/data/stations.csv" "$out"

printf '\nWhat happens to bad elements (examples/error_policy.c)\n\n'
"$programs/error_policy" "$out"

printf '\nPi from random and from evenly spread points (examples/estimate_pi.cpp)\n\n'
"$programs/estimate_pi" "$out"

printf '\nAn option by simulation, and nine distributions (examples/option_price.cpp)\n\n'
"$programs/option_price" "$out"

printf '\nA queue, and a trial of two versions (examples/queue_and_trial.cpp)\n\n'
"$programs/queue_and_trial" "$out"

printf '\nThe period of the sunspots (examples/sunspot_spectrum.cpp)\n\n'
"$programs/sunspot_spectrum" "$here/data/sunspots_yearly.csv" "$out"

printf '\nA heart without hum and drift (examples/ecg_filter.cpp)\n\n'
"$programs/ecg_filter" "$here/data/ecg_360hz.csv" "$out"

printf '\nHow many weeks a year has (examples/co2_year.cpp)\n\n'
"$programs/co2_year" "$here/data/co2_weekly.csv" "$out"

printf '\nA photograph blurred and restored, on one thread and on two (examples/photo_transform.cpp)\n\n'
QKR_SERIAL=YES "$programs/photo_transform" "$here/data/photo.pgm" "$out"
OMP_NUM_THREADS=2 QKR_SERIAL=NO "$programs/photo_transform" "$here/data/photo.pgm" "$out"

printf '\nThree functions over the complex plane (examples/complex_plane.cpp)\n\n'
"$programs/complex_plane" "$out"

printf '\nA heart beat found again (examples/ecg_beats.cpp)\n\n'
"$programs/ecg_beats" "$here/data/ecg_360hz.csv" "$out"

printf '\nA photograph sharpened, and its edges (examples/photo_edges.cpp)\n\n'
"$programs/photo_edges" "$here/data/photo.pgm" "$out"

if [[ -x $programs/mpi/monte_carlo ]]; then
  printf '\nThe mean distance in a cube, on one rank and on two (examples/mpi/monte_carlo.cpp)\n\n'
  for ranks in 1 2; do "$here/mpi/on_this_machine.sh" "$ranks" "$programs/mpi/monte_carlo"; done
fi

printf '\nPictures\n\n'
if [[ -x $python ]]; then
  "$python" "$here/plot.py" "$out"
else
  echo "plots skipped: no $python (Debian packages: python3 python3-matplotlib)"
fi
