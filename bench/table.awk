# Turns the CSV output of bench_search into lines of the tables that people read.
#
# A line of it: "scoring/...",... or "memory/threads:N/...",... or "threads/WHAT/N/...",... or
# "search/CASE/solid:S/offsets:T/keep:K/WAY/...",... Only the names have quotes, and commas of their own.

BEGIN { FS = "\"" }

/^name,/ {
    readHeader($0)
    next
}

{
    split($2, part, "/")
    split($3, column, ",")
}

part[1] == "scoring" {
    printf "  %.0f poses a second, %.2f ns per point\n", value("poses"), value("point") * 1e9
}

part[1] == "memory" {
    printf "Memory beside a map of %.1f MiB: %.1f MiB on %s\n", value("map"), value("beside"), threads(part[2])
}

part[1] == "threads" {
    if (part[3] == 1)
        alone[part[2]] = value("rate")
    else
        printf "  %-22s %.2f\n", part[2], value("rate") / alone[part[2]]
}

# A case without anything to stand beside the target has no line with a solid.
part[1] == "search" && value("poses") != "" {
    if (part[6] == "pose_by_pose") {
        plain = value("poses")
        if (after(part[5]) == 10)
            printf "%-42s %2d cubed", caseName(), after(part[4])
    } else {
        printf "%8.1f %7.3f %%", value("poses") / plain, 100 * value("exact")
        if (after(part[5]) == 5000)
            print ""
    }
}

function readHeader(line,    names, i, n) {
    n = split(line, names, ",")
    delete place
    # What follows the quoted name begins with a comma.
    for (i = 1; i <= n; ++i) {
        gsub(/"/, "", names[i])
        place[names[i]] = i
    }
}

function value(name) {
    return column[place[name]]
}

function after(text) {
    sub(/.*:/, "", text)
    return text
}

function threads(text) {
    return after(text) (after(text) == 1 ? " thread" : " threads")
}

# Said once for the lines of a case.
function caseName(    name) {
    name = part[2] (part[3] == "solid:1" ? ", with a solid" : "")
    if (name == said)
        return ""
    said = name
    return name
}
