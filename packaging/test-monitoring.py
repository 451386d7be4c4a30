#!/usr/bin/python3
"""test-monitoring.py BUILD_DIR [CALLS [SEED]] - check_cnatool on the sample server and on stand-ins
for both programs; random calls of it and of its settings. Ends with 77 where it cannot be root."""

import fcntl
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.realpath(__file__))
DEMO = f"{HERE}/../demo"
BUILD = os.path.realpath(sys.argv[1])
CALLS, SEED = [int(each) for each in (sys.argv[2:] + ["150", "1"][len(sys.argv) - 2 :])]
UNIT = f"{HERE}/systemd/cnatool-check.service"
STATES = ("OK", "WARNING", "CRITICAL", "UNKNOWN")
MEASURE = r" [a-z_]+=\d+(?:\.\d+s)?;;;0"
failures = 0

# How the line begins, the words of the call, and what a shell does to the server before. $G is a
# controller whose storage is allowed, $B one whose storage is not.
CASES = r"""
OK - 2 ports of 1 controller checked, no finding :: $G ::
OK - 2 ports :: $G -- -v 6 --check-for-valid-subsystem ::
OK - 2 ports :: $G :: echo listhbas - sleep 1 > $A/faults.txt
OK - 2 ports :: $G --conpath sub :: mkdir sub; cp FC_* sub
CRITICAL - NV8400B2002 2/0: SOLVEIG Vinter 90 is not allowed by line 29, and 1 more :: $B ::
CRITICAL - NV8400B2002 2/0: S/�?[2K Vinter 90 is :: -v 6 $B :: sed -i 's/SOLVEIG/S|\xff\x1b[2K/' $A/targ*/*
CRITICAL - F1A0:2101: no port :: -pci-id F1A0:2101 ::
CRITICAL - F1A0:2101: no port :: $G,F1A0:2101 ::
CRITICAL - NV8400B2001 2/0 sees SOLVEIG, NV4200A1001 2/0 HELMSTOR :: $G,F1A0:8402:F1A0:0021 --ctrl-vendor-wide-identical ::
CRITICAL - NV4200A1002 2/0 sees HELMSTOR, NV4200A1002 3/1 SOLVEIG :: -pci-id F1A0:4201:F2B0:0012 --ctrl-wide-identical ::
CRITICAL - the management tool lists no port :: $G :: : > $A/listhbas.txt
CRITICAL - a port has no flash port :: $G :: fake cnatool 'exit 22'
CRITICAL - storage is not allowed :: $G :: fake cnatool 'exit 4'; fake cnatool-audit 'exit 2'
CRITICAL - storage is not allowed :: $G --timeout 1 :: fake cnatool 'exit 4'; fake cnatool-audit 'sleep 99'
CRITICAL - no selected controller is there :: $G :: fake cnatool 'exit 12'
CRITICAL - NV4200A1001 2/0: :: $G :: sed -i '0,/HELMSTOR/s//OTHER/' $A/targetmapping/*:01:02.txt
WARNING - 1 finding: group-dropped :: $G,,F1A0:8402 ::
WARNING - 2 findings: no-storage NV4200A1001 2/0, no-storage NV4200A1001 3/1 :: $G :: sed -i '/^FCP ID/,$d' $A/targetmapping/*:01:0?.txt
UNKNOWN - status 3, cnatool refuses the call: Error: List of PCI :: -v 2 -pci-id F1A0 ::
UNKNOWN - status 15, the table cannot be read: Error: Could not open :: $G :: rm FC*
UNKNOWN - status 21, the management tool is not installed: Error: Flash :: $G :: rm $T/hbacmd
UNKNOWN - status 51, an output of the management tool cannot be read: Error: 1 :: $G :: fake cnatool 'echo Error: 1; echo 2; exit 51'
UNKNOWN - status 55, the ports cannot be listed, or an identifier is not valid: hbacmd: lis :: $G :: echo listhbas - exit 3 > $A/faults.txt
UNKNOWN - status 99, no known status :: $G :: fake cnatool 'exit 99'
UNKNOWN - cnatool was ended by signal 9 :: $G :: fake cnatool 'kill -9 $$'
UNKNOWN - a number is too large :: -pci-id FFFFFFFFFFFFFFFFFFFF:1 --ctrl-wide-identical ::
UNKNOWN - no audit: not here :: $G :: fake cnatool-audit 'echo not here >&2; exit 2'
UNKNOWN - no audit: not understood :: $G :: fake cnatool-audit 'echo {}'
UNKNOWN - no audit: not understood :: $G :: fake cnatool-audit 'echo No finding'
UNKNOWN - no audit: not understood: ValueError('format 3') :: $G :: fake cnatool-audit 'echo {\"format\": 3}'
UNKNOWN - no audit: cnatool-audit: :: $G --accept nonsense ::
CRITICAL - no selected controller is there :: -pci-id F1A0:2101 --accept not-installed ::
OK - 2 ports of 1 controller checked, no finding, 1 accepted :: $G,F1A0:2101 --accept not-installed ::
OK - 2 ports of 1 controller checked, 1 note :: $G --accept output-old ::
UNKNOWN - no port was checked :: $G :: fake cnatool 'exit 0'; fake cnatool-audit 'cat object'; echo '{"format": 2, "controllers": [], "findings": []}' > object
UNKNOWN - cannot run :: $G :: rm cnatool-audit
UNKNOWN - no controllers are selected :: ::
UNKNOWN - no controllers are selected :: -v 2 ::
UNKNOWN - no value behind -pci-id :: -v 2 -pci-id ::
UNKNOWN - the time is over, waiting for the management tool: listhbas :: --timeout 2 $G :: fake $T/hbacmd "trap '' TERM; setsid sleep 99 & while :; do sleep 1; done"
UNKNOWN - the time is over, waiting for the management tool: targetmapping 10:00:02:00:5e:10: :: --timeout 3 $G :: echo 'targetmapping * sleep 99' > $A/faults.txt
UNKNOWN - the time is over, waiting for another run (cnatool-audit waits for it) :: --timeout 2 $G :: fake cnatool 'flock -x . sleep 99 & sleep .3'
UNKNOWN - the time is over, waiting for cnatool :: --timeout 1 $G :: fake cnatool 'sleep 99'
OK - 2 ports :: --timeout 9 :: set_to 'SELECTION=" -pci-id\t'"'F1A0:4201:F1A0:0011'"'\n" # \374x' "OPTIONS='-v  2'"
CRITICAL - NV84 :: :: set_to "SELECTION='$B'"
WARNING - 1 finding: no-storage NV4200A1001 3/1 :: :: set_to "SELECTION='$G'" "ACCEPT='no-storage@NV4200A1001 2/0'"; sed -i '/^FCP ID/,$d' $A/targetmapping/*:01:0?.txt
UNKNOWN - not allowed in a check: --conpath x--silent :: --conpath x--silent $G ::
UNKNOWN - not allowed in a check: --flash :: :: set_to "SELECTION='$G'" OPTIONS=--flash
UNKNOWN - cannot read :: :: set_to "SELECTION='$G"
UNKNOWN - cannot read :: :: set_to "SELECTION=$G"
UNKNOWN - cannot read :: :: set_to "SELECTION='$G'" OPTION=
"""
NAMES = {
    "$G": "-pci-id F1A0:4201:F1A0:0011",
    "$B": "-pci-id F1A0:8402:F2B0:0022",
    "$A": "opt/emulex/ocmanager/bin/answers",
    "$T": "opt/emulex/ocmanager/bin",
}
SHELL = r"""
fake() { printf '#!/bin/sh\n%s\n' "$2" > "$1"; chmod 755 "$1"; }
set_to() { for each; do printf "CNATOOL_$each\n"; done > settings; }
"""

# What the settings must not hold; and the words of a random call, each a part of the caller's own
# line or of a value in the settings.
REFUSED = """-? /? -h /h --help /-help --hiddenhelp --info /-info --version /-version --silent
/-silent x--silent -v|0 -v|+0 -v|00 /v|0 -d|1 /d|2 --debug|0 --flash /-flash --simulate /-simulate
--show-return-codes /-show-return-code --vox-mode --vox-modes -vn|x -vn|x--silent -mod|x
--conpath|x--silent --details-first --""".split()
TAKEN = """-v|1 -v|6 -vid|F1A0 -dev|4201 -subvid|F1A0 -subdev|0011 -pci-id|F1A0:4201
-pci-id|F1A0:8402:F2B0:0022 -pci-id|, -pci-id|1 --conpath|. --conpath|. --check-for-valid-subsystem
--ctrl-wide-identical --ctrl-vendor-wide-identical --accept|no-storage --timeout|9""".split()
PARTS = REFUSED + TAKEN
BLANKS = (" ", "  ", "\t", "\n", "\u00a0", " \\\n", "\r")
CHECK = {"listhbas", "hbaattributes", "targetmapping"}


def fail(*words):
    global failures
    failures += 1
    print("test-monitoring.py:", *words)


def become_root():
    """The plugin asks for root; a root of a name space is one."""
    for lead in () if os.geteuid() == 0 else (["unshare", "--map-root-user"], ["fakeroot"]):
        if not shutil.which(lead[0]):
            continue
        if subprocess.run([*lead, "true"], stderr=subprocess.DEVNULL).returncode == 0:
            os.execvp(lead[0], [*lead, sys.executable, *sys.argv])
    if os.geteuid() != 0 or not os.path.exists(f"{BUILD}/cnatool-audit"):
        print("No root here, or no cnatool-audit.")
        sys.exit(77)


def lay_out(place, setup=""):
    tool = f"{place}/{NAMES['$T']}"
    shutil.copytree(f"{DEMO}/server", place)
    shutil.copytree(f"{DEMO}/answers", f"{tool}/answers")
    shutil.copy(f"{DEMO}/hbacmd", tool)
    shutil.copy(f"{BUILD}/cnatool-sandbox", f"{place}/cnatool")
    shutil.copy(f"{BUILD}/cnatool-audit", place)
    shutil.copy(f"{HERE}/monitoring/check_cnatool", place)
    to_settings = f"sed -i 's#/etc/default/cnatool#{place}/settings#' check_cnatool"
    subprocess.run(["sh", "-ec", f"{SHELL}\n{to_settings}\n{setup}"], cwd=place, check=True)
    return place


def left_running(place):
    found = []
    for entry in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{entry}/cwd") == place:
                found.append(entry)
        except OSError:
            pass
    return found


def said(words, status, output):
    """The line without its measures, and the lines behind it."""
    lines = output.decode("utf-8").split("\n")[:-1] or [""]
    line = lines.pop(-1 if "--details-first" in words else 0)
    if not re.fullmatch(rf"CNATOOL {STATES[status]} - [^|]*? \|({MEASURE})+", line):
        fail(words, "ends with", status, "and the line", line)
    if any(c == "|" or c != "\t" and not c.isprintable() for c in "".join(lines)):
        fail(words, "has a bar or a control character behind its line")
    return line[8:].partition(" |")[0], lines


def ask(place, words, lead=()):
    """Status, line and further lines; and which commands the management tool was asked."""
    log = f"{place}/{NAMES['$T']}/calls.log"
    open(log, "w").close()
    ended = subprocess.run([*lead, "./check_cnatool", *words], cwd=place, capture_output=True)
    if ended.stderr or left_running(place):
        fail(words, "leaves running", left_running(place), "and writes", ended.stderr)
    with open(log, encoding="utf-8") as file:
        asked = {line.split()[0] for line in file}
    return (ended.returncode, *said(words, ended.returncode, ended.stdout), asked)


def try_cases(scratch):
    text = CASES
    for name, value in NAMES.items():
        text = text.replace(name, value)
    for number, case in enumerate(text.strip().split("\n")):
        expected, words, setup = (part.strip() for part in case.split(" ::", 2))
        place = lay_out(f"{scratch}/{number}", setup)
        line = ask(place, words.split())[1]
        if not line.startswith(expected):
            fail(words, setup, "says", line)
        shutil.rmtree(place)


def try_ends(scratch):
    """A lock that another run holds, a signal, an ordinary user, and what ends with 3 at once."""
    place = lay_out(f"{scratch}/ends", f"fake {NAMES['$T']}/hbacmd 'sleep 99'")
    good = NAMES["$G"].split()
    holder = os.open(place, os.O_RDONLY)
    fcntl.flock(holder, fcntl.LOCK_EX)
    line = ask(place, [*good, "--timeout", "1"])[1]
    if line != f"UNKNOWN - the time is over, waiting for another run on {place}/":
        fail("under a lock it says", line)
    os.close(holder)
    call = subprocess.Popen(["./check_cnatool", *good], cwd=place, stdout=subprocess.PIPE)
    while len(left_running(place)) < 3 and call.poll() is None:
        time.sleep(0.1)
    call.send_signal(signal.SIGHUP)
    line = said([], 3, call.communicate()[0])[0]
    if line != "UNKNOWN - check_cnatool was ended by signal 1" or left_running(place):
        fail("a signal makes it say", line, "and leaves", left_running(place))
    ordinary = ["setpriv", "--reuid=65534", "--clear-groups"]
    tried = subprocess.run([*ordinary, "true"], stderr=subprocess.DEVNULL)
    if "FAKEROOTKEY" not in os.environ and tried.returncode == 0:
        os.chmod(scratch, 0o755)
        if not (line := ask(place, good, ordinary)[1]).startswith("UNKNOWN - not run as root"):
            fail("as an ordinary user it says", line)
    about, version = b"check_cnatool - ", b"check_cnatool 1."
    for word, begins in {"--help": about, "-h": about, "--version": version, "-V": version}.items():
        ended = subprocess.run(["./check_cnatool", *good, word], cwd=place, stdout=subprocess.PIPE)
        if ended.returncode != 3 or not ended.stdout.startswith(begins):
            fail(word, ended)
    for part in REFUSED:
        words = [*good, *part.split("|")]
        text = "\t".join(words)  # a tab parts words as a blank does
        with open(f"{place}/settings", "w", encoding="utf-8") as file:
            file.write(f"CNATOOL_SELECTION='{text}'\n")
        line = ask(place, ["--timeout", "1"])[1]
        if not line.startswith(f"UNKNOWN - not allowed in a check: {words[len(good)]}"):
            fail("with the settings", words, "it says", line)


def random_call(place, chance):
    """Words of a call; or those of the unit, which go by random settings."""
    parts = chance.sample(PARTS, chance.randint(0, 3))
    if chance.random() < 0.7:
        parts.insert(chance.randint(0, len(parts)), NAMES["$G"].replace(" ", "|"))
    words = "|".join(parts).split("|")
    if chance.random() < 0.4:
        return words
    odd = chance.random() < 0.5
    text = ""
    for word in words:
        quote = chance.choice("\"'") if odd and chance.random() < 0.3 else ""
        text += quote + word + quote + (chance.choice(BLANKS) if odd else " ")
    cut = chance.randint(0, len(text)) if odd else len(text)
    quote = chance.choice("\"'")
    with open(f"{place}/settings", "w", encoding="utf-8") as file:
        for name, value in (("SELECTION", text[:cut]), ("OPTIONS", text[cut:])):
            file.write(f"CNATOOL_{name}={quote}{value}{quote}\n")
    with open(UNIT, encoding="utf-8") as file:
        return re.search("^ExecStart=.*/check_cnatool (.*)", file.read(), re.M)[1].split()


def try_random_calls(scratch):
    """On a server where all is well, and on one where the listing fails and says all the same."""
    fault = f"echo listhbas - cut 99999 exit 3 > {NAMES['$A']}/faults.txt"
    places = [lay_out(f"{scratch}/well"), lay_out(f"{scratch}/failing", fault)]
    chance = random.Random(SEED)
    states = [0] * len(STATES)
    for _ in range(CALLS):
        place = chance.choice(places)
        words = random_call(place, chance)
        if set(words) & {"--help", "-h", "--version"}:
            ended = subprocess.run(
                ["./check_cnatool", *words], cwd=place, stdout=subprocess.DEVNULL
            )
            if ended.returncode != 3:
                fail(words, "ends with", ended.returncode)
            continue
        status, line, lines, asked = ask(place, words)
        states[status] += 1
        checked = asked == CHECK and any("Perform subsystem check for:" in each for each in lines)
        if "download" in asked or (status < 2 and (place != places[0] or not checked)):
            fail(words, open(f"{place}/settings").read(), "says", line, "having asked", asked)
    print(f"Random calls with seed {SEED}:", *(f"{n} {name}" for n, name in zip(states, STATES)))
    if CALLS >= 100 and not (states[0] and states[3]):
        fail("all random calls end alike")


if __name__ == "__main__":
    become_root()
    with tempfile.TemporaryDirectory() as scratch:
        scratch = os.path.realpath(scratch)
        for test in (try_cases, try_ends, try_random_calls):
            test(scratch)
    sys.exit(1 if failures else 0)
