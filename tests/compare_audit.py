#!/usr/bin/env python3
"""compare_audit.py BUILD_DIR SERVERS [SEED]

Lays out random servers and holds what cnatool-audit says of each against what runs of
cnatool-sandbox do there with the same selection: which ports a check judges and how it ends, and
which images a flash sends, in their order. Without an error or a warning every FCoE port must be judged."""

import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

TOOL = """#!/bin/sh
here=${0%/*}
case $1 in
    download) echo $2 $3 >> "$here/sent" ;;
    *) cat "$here/$1.$2" ;;
esac
"""
IMAGES = ["a.grp", "a1.grp", "b.prg", ".c.grp", "fw", "fw.bin"]
oddness = 1.0  # set for each server


def pick(usual, rare, part=0.12):
    """Now and then a rare value; on a tidy server hardly ever."""
    return random.choice(rare) if random.random() < part * oddness else usual


def write(path, text):
    with open(path, "w", encoding="ascii") as file:
        file.write(text)


def lay_out_port(tool, c, function, kind, shift):
    number = pick(function % 2, [0, 1, 2], 0.05)
    serial = pick(c["serial"], ["n/a", "A", "AB"], 0.03)
    name = "10:%s:%d" % (c["serial"], function) if kind.startswith("F") else "%s-%d" % (c["serial"], function)
    opening = "Port WWN" if kind.startswith("F") else "Permanent MAC"
    ids = dict(c["ids"], **({"Device ID": c["ids"]["Device ID"] + "9"} if shift else {}))
    write(f"{tool}/hbaattributes.{name}", pick(f"HBA Attributes for {name}\n", [""], 0.01) +
          "".join(f"{key} : {value}\n" for key, value in ids.items()))
    storage = pick(f"Vendor ID : {pick('VEND', ['OTHER', 'WRONG'])}\nProduct ID : "
                   f"{pick('Alpha1', ['Beta', 'Gamma'])}\nProduct Version : 1\n", [""], 0.1)
    write(f"{tool}/targetmapping.{name}", pick(f"Target Mapping for {name}\n\n\n\n{storage}", [""], 0.01))
    return (f"{opening} : {name}\nMfg : {c['vendor']}\nSerial No : {serial}\nPort Number : {number}\n"
            f"PCI Function : {function}\nPort Type : {kind}\nModel : {c['model']}\n\n")


def lay_out_controller(tool, serial):
    c = {"serial": serial, "vendor": "Acme Corp", "model": random.choice(["M1", "M10", "M2"]),
         "ids": {"Vendor Spec ID": "1A", "Device ID": random.choice("12"), "Sub Vendor ID": "2B",
                 "Sub Device ID": random.choice("45")}}
    kinds = random.choice([["iSCSI", "iSCSI", "FCoE", "FCoE"], ["FCoE", "FCoE"], ["iSCSI", "FCoE"], ["FCoE"],
                           ["iSCSI", "FCoE", "FCoE", "FCoE"], ["FCoE"] * 3, ["iSCSI", "FCoE2", "FC", "NIC"]])
    split = pick(False, [True], 0.1)  # its flash port has other identifiers
    blocks = [lay_out_port(tool, c, function, kind, split and function == 0) for function, kind in enumerate(kinds)]
    return c, random.sample(blocks, len(blocks))


def row_for(c):
    ids = c["ids"]
    sub = pick(ids["Sub Vendor ID"] + " | " + ids["Sub Device ID"], ["0 | 0", "2B | 4"])
    storage = pick("VEND | Alpha,Bet | x | OTHER | G,Beta | x", ["VEND | Alpha", "VEND | | x | OTHER | | x"])
    return " | ".join([pick("Acme", ["Acme Corp", "ACME", "Acme Corp."]), pick(c["model"], ["M", "M10", "M3"]), "1A",
                       ids["Device ID"], sub, pick(" ", ["d1", "gone"]), "-", "-",
                       pick(random.choice(["a.g", "a1", "fw.b"]), ["*.grp", "f"], 0.4), random.choice([" ", "*.prg", pick("b", ["*.x"])]), "-", "-",
                       storage])


def lay_out(server, build):
    tool = f"{server}/opt/emulex/ocmanager/bin"
    os.makedirs(tool)
    write(f"{tool}/hbacmd", TOOL)
    os.chmod(f"{tool}/hbacmd", 0o755)
    os.symlink(f"{build}/cnatool-sandbox", f"{server}/cnatool")
    os.symlink(f"{build}/cnatool-audit", f"{server}/cnatool-audit")
    laid_out = [lay_out_controller(tool, serial)
                for serial in random.sample(["A", "AB", "C", "D", "E"], random.randint(1, 3))]
    write(f"{tool}/listhbas.", "".join(block for _, blocks in laid_out for block in blocks))
    rows = [row_for(c) for c, _ in laid_out if pick(True, [False], 0.07)]
    write(f"{server}/FC_HBA_Conditions.txt", "\n".join(rows + rows[:1] * pick(0, [1], 0.05)))
    for directory in [".", "M1", "M10", "M2", "d1"]:
        if directory == "." or pick(True, [False], 0.15):
            os.makedirs(f"{server}/{directory}", exist_ok=True)
            for image in pick(IMAGES, [random.sample(IMAGES, 4)], 0.6):
                write(f"{server}/{directory}/{image}", "x")
    wanted = [c["ids"] for c, _ in laid_out if random.random() < 0.8] or [laid_out[0][0]["ids"]]
    return ",".join(":".join(list(ids.values())[:pick(4, [2])]) for ids in wanted) + pick("", [",1A:7"], 0.03)


def run(server, *words):
    return subprocess.run(words, cwd=server, capture_output=True, text=True, check=False)


def outcome_of(report):
    """What the audit says a check and a flash come to, as (ports, status) and (images, status)."""
    ports = [(c["serial"], p) for c in report["controllers"] for p in c["ports"]]
    judged = sorted(f"{serial} {p['type']} {p['number']} {p['function']}" for serial, p in ports if p["checked_by"])
    refused = any(p["checked_by"] and p["storage"] and not p["allowed_by"] for _, p in ports)
    none_fits = not any(p["selected"] for _, p in ports)
    sent = [f"{d['address']} {d['image']}".strip() for d in report["downloads"] if d["sent"]]
    fails = any(f["code"] == "image-missing" for f in report["findings"])
    return (judged, 4 if refused else 12 if none_fits else 0), (sent, 20 if fails else 12 if none_fits else 0)


def compare(server, build):
    """The number of findings, or None where a run ends before its walks; an assertion fails otherwise."""
    selection = lay_out(server, build)
    check = run(server, "./cnatool", "-pci-id", selection)
    audit = run(server, "./cnatool-audit", "--json", "--flash", "-pci-id", selection)
    if audit.returncode == 2:
        assert check.returncode == 22 and audit.stdout == "", (check.returncode, audit.stderr)
        return None
    report = json.loads(audit.stdout)
    if any("ports share it" in finding["what"] for finding in report["findings"]):
        return len(report["findings"])  # a run reads each answer before the next one replaces it
    judged = re.findall(r"Perform subsystem check for:\n.*SerialNumber: (.*) PortType: (.*) PortNumber: (.*) "
                        r"PCI function: (.*)\n", check.stdout)
    flash = run(server, "./cnatool", "--flash", "-pci-id", selection)
    sent = f"{server}/opt/emulex/ocmanager/bin/sent"
    images = open(sent, encoding="ascii").read().splitlines() if os.path.exists(sent) else []
    real = (sorted(map(" ".join, judged)), check.returncode), (images, flash.returncode)
    assert outcome_of(report) == real, (selection, outcome_of(report), real)
    if not report["status"]:
        for c in (c for c in report["controllers"] if any(p["selected"] for p in c["ports"])):
            assert all(p["checked_by"] for p in c["ports"] if p["type"].startswith("FCoE")), c
    return len(report["findings"])


def main():
    global oddness
    build, servers = os.path.abspath(sys.argv[1]), int(sys.argv[2])
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    counts = []
    for number in range(seed, seed + servers):
        random.seed(number)
        oddness = random.choice([0.05, 1.0])
        server = tempfile.mkdtemp()
        try:
            counts.append(compare(server, build))
        except AssertionError as difference:
            sys.exit(f"seed {number}, {server}: {difference}")
        shutil.rmtree(server)
    print(f"{servers} servers: {counts.count(0)} without a finding, {counts.count(None)} without a flash port")


if __name__ == "__main__":
    main()
