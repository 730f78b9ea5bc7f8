# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers

# A file of hours, nearly all of it a hole, so that every conversion is caught in the middle.
make_dsd dsf long.dsf 1
patch long.dsf 64 "0000000002000000"
truncate -s 3G long.dsf
mkdir out
echo old >out/old.wav

# env: a shell has its background jobs ignore SIGINT.
for signal in INT TERM HUP; do
  for name in new.wav old.wav; do
    echo "$signal, $name"
    env --default-signal corvin convert long.dsf -o out/$name -y &
    tool=$!
    # The output has grown beyond its header, so the conversion runs.
    for _ in $(seq 600); do
      find out -name '.corvin-*' -size +64k | grep -q . && break
      sleep 0.05
    done
    kill -$signal $tool
    wait $tool
    echo "exit $?"
    list out
    cat out/old.wav
  done
done

# nohup is heeded: the signal passes, the conversion goes on until it is told otherwise.
(trap '' HUP && exec corvin convert long.dsf -o out/new.wav) &
tool=$!
for _ in $(seq 600); do
  find out -name '.corvin-*' -size +64k | grep -q . && break
  sleep 0.05
done
kill -HUP $tool
sleep 0.2
kill -TERM $tool
wait $tool
echo "exit $?"
