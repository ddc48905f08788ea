#!/usr/bin/env bash
# Measures what docs/machines.md tells: run.sh PROGRAM_DIR, where constants and beside_fftw lie. To be left alone on the
# machine, and repeated: the tables take the smallest time of all runs that lie in out/bench/mpi.
set -euo pipefail
(($# == 1)) || { echo "usage: run.sh PROGRAM_DIR" >&2; exit 1; }
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=$here/../../out/bench/mpi
launch=$here/../../examples/mpi/on_this_machine.sh
mkdir -p "$out"
for link in vader tcp; do # shared memory, and the network's software without its wires
  LINKS=self,$link "$launch" 2 "$1/constants" >"$out/$link.$(date +%s)"
done
# What has nothing to do with the link counts for both.
grep -hE '^(point|copy|transform|measured 1)' "$out"/*.* >"$out/machine"
for link in vader tcp; do
  printf '\n%s\n' "$link"
  "$here/scaling.py" "$out/machine" "$out/$link".*
done
printf '\n'
for ranks in 1 2; do "$launch" "$ranks" "$1/beside_fftw"; done
