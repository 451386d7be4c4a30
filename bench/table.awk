# Prints the table from lines of: name, wall time and processor time in milliseconds, peak memory
# in KiB. The runs of a name are in the order in which they were made.
#
# A ratio is the median over the runs, each divided by the run beside it. Ends with 1 when a goal
# is missed.

{
    run = ++runs[$1]
    wall[$1, run] = $2
    processor[$1, run] = $3
    memory[$1, run] = $4
}

# Sorts values[1..count], and gives the value below which this part of them is.
function quantile(values, count, part,    i, j, value, place) {
    for (i = 2; i <= count; ++i) {
        value = values[i]
        for (j = i - 1; j >= 1 && values[j] > value; --j) values[j + 1] = values[j]
        values[j + 1] = value
    }
    place = 1 + part * (count - 1)
    i = int(place)
    return i == count ? values[i] : values[i] + (place - i) * (values[i + 1] - values[i])
}

function median_of(table, name,    i, values) {
    for (i = 1; i <= runs[name]; ++i) values[i] = table[name, i]
    return quantile(values, runs[name], 0.5)
}

function verdict(value, goal) {
    if (goal == "") return ""
    if (value <= goal) return sprintf("at most %s: met", goal)
    missed = 1
    return sprintf("at most %s: MISSED", goal)
}

function row(label, name, beside, goal,    i, ratios, processor_ratios, ratio) {
    for (i = 1; i <= runs[name]; ++i) {
        ratios[i] = wall[name, i] / wall[beside, i]
        processor_ratios[i] = processor[name, i] / processor[beside, i]
    }
    ratio = quantile(ratios, runs[name], 0.5)
    printf "%-50s %8.1f %8.1f %7.3f  %6.3f - %-6.3f %6.2f  %s\n", label,
        median_of(wall, name), median_of(wall, beside), ratio,
        quantile(ratios, runs[name], 0.25), quantile(ratios, runs[name], 0.75),
        quantile(processor_ratios, runs[name], 0.5), verdict(ratio, goal)
}

function memory_row(label, name, goal,    i, largest) {
    for (i = 1; i <= runs[name]; ++i) if (memory[name, i] > largest) largest = memory[name, i]
    printf "%-50s %8.1f MiB%39s%s\n", label, largest / 1024, "",
        verdict(largest / 1024, goal)
}

END {
    printf "%-50s %8s %8s %7s  %-15s %6s  %s\n", "", "ms", "beside", "ratio", "middle half", "CPU",
        "goal"
    row("check of 64 ports / the same 129 commands bare", "check", "bare", 1.03)
    row("--simulate,    64 ports / the 129 commands bare", "own", "bare", "")
    row("start (--version) / start of a shell", "start", "shell", "")
    row("--simulate,   250 ports / cat of the files", "usual250", "cat250", "")
    row("--simulate, 1,000 ports / cat of the files", "usual1000", "cat1000", 3)
    row("--simulate, 4,000 ports / cat of the files", "usual4000", "cat4000", "")
    row("--simulate, 1,000 ports / wc -l of the files", "usual1000", "wc1000", "")
    row("--simulate, 1,000 ports / 250 ports", "usual1000", "usual250", "")
    row("--simulate, 4,000 ports / 1,000 ports", "usual4000", "usual1000", 5)
    memory_row("peak memory, 4,000 ports", "usual4000", 16)
    print "\n4,000 ports in orders that are hard for port ordering, beside the usual one:"
    row("  iSCSI and FCoE controllers in turn", "alternating", "usual4000", "")
    row("  the ports of each controller scattered", "scattered", "usual4000", "")
    row("  each port a controller of its own", "one-port", "usual4000", "")
    row("  one serial number for all", "one-serial", "usual4000", "")
    exit missed
}
