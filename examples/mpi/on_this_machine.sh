#!/usr/bin/env bash
# Runs a program on so many ranks of this machine: on_this_machine.sh RANKS PROGRAM [ARGUMENT...]
# There may be more ranks than processors, the user may be root, as in a container, and nothing but shared memory is
# needed: neither ssh nor a network, and no calls that containers forbid. On a cluster its own mpirun or srun does it.
# LINKS=self,tcp in the environment sends messages through the loopback device instead.
set -euo pipefail
(($# >= 2)) || { echo "usage: on_this_machine.sh RANKS PROGRAM [ARGUMENT...]" >&2; exit 1; }
options=()
if mpirun --version | grep -q 'Open MPI'; then
  options=(--oversubscribe --allow-run-as-root --bind-to none --mca plm isolated --mca pml ob1
           --mca btl "${LINKS:-self,vader}" --mca btl_vader_single_copy_mechanism none --mca btl_tcp_if_include lo)
fi
exec mpirun "${options[@]}" -n "$@"
