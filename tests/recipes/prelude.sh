#!/bin/bash
# shellcheck disable=SC2016,SC2034
# What stands in for the reader and the reader's surroundings. Sourced by the scripts that run_lines
# makes, inside a Debian of its own, as root; the project is in ~reader/tarvo.

project=/home/reader/tarvo

# as_reader LINE: as the reader types it, in a shell of its own in the project's folder.
as_reader() {
  echo "\$ $1"
  su - reader -c "cd tarvo && set -o pipefail && $1" </dev/null
}

# A print server and a printer that is not there, with a network of their own: no port of this machine
# is opened. The spooler is spoken to through its socket, which is a file.
start_cups_and_printer() {
  local bring_up='import fcntl, socket, struct
fcntl.ioctl(socket.socket(), 0x8914, struct.pack("16sh14x", b"lo", 0x41))'
  install -d -m 777 /paper
  unshare --net bash -c '
    python3 -c "$1"
    tsplprinter --port 9100 --out /paper >/paper/log 2>&1 &
    exec cupsd -f' bash "$bring_up" &
  for _ in $(seq 100); do
    ! lpstat -r 2>/dev/null | grep -q 'is running' || return 0
    sleep 0.1
  done
  echo "CUPS did not start" >&2
  return 1
}

# A picture comes out of the printer: one label of 4 x 6 inches at 203 dpi.
await_page() {
  for _ in $(seq 300); do
    if [ -n "$(ls /paper/*.png 2>/dev/null)" ]; then
      file /paper/*.png || true
      rm -f /paper/*.png /paper/*.tspl
      return 0
    fi
    sleep 0.1
  done
  echo "nothing was printed" >&2
  cat /paper/log >&2
  tail -40 /var/log/cups/error_log >&2
  return 1
}
