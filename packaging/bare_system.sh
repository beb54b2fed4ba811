#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs inside of a bare Debian system (tools/release_check.sh makes it) and uses the programs there as a
# user does. DISPLAY is a screen outside of it.
#   bare_system.sh deb PACKAGE    installs the package, uses it, removes and purges it
#   bare_system.sh tar ARCHIVE    unpacks the archive where no Qt is, and uses it
# Exit status 75: Debian's archive did not deliver what the check itself needs.
set -eu
export LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive HOME=/home/engineer
mkdir -p "$HOME" /tmp/run
chmod 700 /tmp/run
export XDG_RUNTIME_DIR=/tmp/run
folder=$HOME/QK47-20-09

fail() {
  echo "FAILED: $*" >&2
  [ ! -e /tmp/program.log ] || cat /tmp/program.log >&2
  exit 1
}

# Until the command succeeds, two minutes at most.
until_true() {
  what=$1
  shift
  n=0
  until "$@" >/dev/null 2>&1; do
    n=$((n + 1))
    [ $n -lt 600 ] || fail "$what: not within two minutes"
    sleep 0.2
  done
  echo "  $what"
}

opened() {
  grep -qF "$1" "$folder/RecentFiles.txt"
}

# Calibrates on the simulated instrument, measures, and saves a picture and the session.
measure() {
  "$@" --console --demo --pace fast --folder /tmp/measure >/tmp/measure.log <<'END' || fail "console"
click Form1.SetCal
click Calibration.Command1
set Calibration.Option3 on
bench follow on
click Calibration.O_Cal
answer ok
click Calibration.S_Cal
answer ok
click Calibration.M_Cal
answer ok
click Calibration.App_Cal
click Calibration.Cls_Cal
click Form1.StartMeasurement
wait sweeps 2
click Form1.StopMeasurement
wait idle
picture /tmp/trace.png
click Form1.SaveCal
answer /tmp/bench.cal
quit
END
  if grep '^error ' /tmp/measure.log >&2; then
    cat /tmp/measure.log >&2
    fail "a command was refused"
  fi
  [ "$(wc -c </tmp/trace.png)" -gt 5000 ] || fail "the picture is empty"
  head -c 9 /tmp/bench.cal | grep -q '"calfile0' || fail "there is no session"
  head -c 5 /tmp/measure/UsersManual.pdf | grep -q %PDF || fail "the guide was not brought"
  echo "  calibrated on the simulated instrument, saved a picture and a session, has its guide"
}

# The window is there, opens a session and a Touchstone file that later starts hand over, and ends.
# The rest of the arguments starts a second program with a file.
open_files() {
  until_true "the window has started" test -e "$folder/UsersManual.pdf"
  {
    echo '! Made for this check'
    echo '# MHZ S RI R 50'
    for mhz in 3 1000 2000 3000; do echo "$mhz 0.1 0.2"; done
  } >/tmp/part.s1p
  "$@" /tmp/bench.cal || fail "the second start"
  until_true "the running program opened the session" opened /tmp/bench.cal
  "$@" /tmp/part.s1p || fail "the second start"
  until_true "the running program opened the Touchstone file" opened /tmp/part.s1p
  until_true "the later starts have ended, one program runs" \
    sh -c '[ "$(pidof -c qk47-vna | wc -w)" -eq 1 ]'
}

# From outside somebody works the windows of the program that runs here: packaging/bare_desktop.py.
work_windows() {
  pidof -c qk47-vna >/tmp/desktop-go.new
  mv /tmp/desktop-go.new /tmp/desktop-go
  n=0
  until [ -e /tmp/desktop-done ]; do
    n=$((n + 1))
    [ $n -lt 1200 ] && [ ! -e /tmp/desktop-failed ] || fail "the windows could not be worked"
    sleep 0.5
  done
}

# pidof -c: of this system alone, and not of the machine around it.
end_program() {
  kill "$(pidof -c qk47-vna)"
  until_true "the program has ended" sh -c '! pidof -c qk47-vna'
}

# Installs packages. One that cannot be had at all is a failure of ours; one that the archive does not deliver
# just now is none.
install() {
  apt-get install -y -qq --no-install-recommends --simulate "$@" >/tmp/apt.log 2>&1 || {
    cat /tmp/apt.log >&2
    fail "what the package asks for is not in Debian"
  }
  apt-get install -y -qq --no-install-recommends --download-only "$@" >>/tmp/apt.log 2>&1 || exit 75
  apt-get install -y -qq --no-install-recommends "$@" >>/tmp/apt.log 2>&1 || {
    cat /tmp/apt.log >&2
    fail "apt-get install"
  }
}

check_deb() {
  apt-get update -qq -o APT::Update::Error-Mode=any || exit 75
  install "$1"
  echo "  installed with what it needs"
  qk47-vna --version
  measure qk47-vna
  # What a desktop has: the menu's starter, and the lists of file types and menu entries.
  install libglib2.0-bin shared-mime-info desktop-file-utils
  [ "$(gio info -a standard::content-type /tmp/bench.cal | grep -c application/x-qk47-session)" -eq 1 ] ||
    fail "a session is not known by its first bytes"
  echo "foreign" >/tmp/foreign.cal
  ! gio info -a standard::content-type /tmp/foreign.cal | grep -q qk47 || fail "a foreign .cal is taken"
  # The menu's action "Simulated Instrument"; gio starts an entry's main command only.
  entry=$(sed -n '/^\[Desktop Action Demonstration\]/,$s/^Exec=//p' \
    /usr/share/applications/qk47-vna.desktop)
  [ -n "$entry" ] || fail "the menu has no demonstration"
  $entry >/tmp/program.log 2>&1 &
  until_true "the menu entry has started the program" pidof -c qk47-vna
  work_windows
  open_files gio open
  end_program

  apt-get remove -y -qq qk47-vna >>/tmp/apt.log 2>&1 || fail "apt-get remove"
  # apt no longer finds a package that came from a file; dpkg takes the request.
  dpkg --purge qk47-vna >>/tmp/apt.log 2>&1 || fail "dpkg --purge"
  left=$(find / -xdev \( -path /proc -o -path /sys -o -path /tmp -o -path /home \
    -o -path /var/cache -o -path /var/log \) -prune -o -iname '*qk47*' -print)
  [ -z "$left" ] || fail "left behind: $left"
  left=$(grep -rl qk47 /usr/share/applications /usr/share/mime /etc 2>/dev/null || true)
  [ -z "$left" ] || fail "still named in: $left"
  ! dpkg-query -W qk47-vna >/dev/null 2>&1 || fail "dpkg still knows the package"
  [ -e "$folder/UsersManual.pdf" ] || fail "the user's folder has gone"
  echo "  removed and purged: nothing is left but the user's folder"
}

check_tar() {
  ! find / -xdev -name 'libQt6*' | grep -q . || fail "there is a Qt in the bare system"
  mkdir -p /opt
  tar --no-same-owner -xf "$1" -C /opt
  tree=$(echo /opt/qk47-vna-*)
  "$tree/qk47-vna" --version
  outside=$(find "$tree/bin" "$tree/plugins" "$tree/lib" -type f -name '*' ! -name '*.conf' \
    -exec ldd {} + 2>/dev/null | awk '$2 == "=>" { print $1, $3 }' | grep -v " $tree/" |
    grep -vE '^(libc|libm|libdl|libpthread|librt|libresolv|libutil)\.so' | sort -u || true)
  [ -z "$outside" ] || fail "libraries from outside: $outside"
  measure "$tree/qk47-vna"
  mv "$tree" /opt/moved
  /opt/moved/qk47-vna --demo >/tmp/program.log 2>&1 &
  until_true "the program has started" pidof -c qk47-vna
  work_windows
  open_files /opt/moved/qk47-vna
  end_program
}

case $1 in
  deb) check_deb "$2" ;;
  tar) check_tar "$2" ;;
esac
