# Holds a rewritten copy against its original. Files, in this order: the original's rows and the
# copy's (list_rows.awk), the plan of all links (plan.awk), the part of it that was asked for, what
# the original shows, what a copy shows in which every link was changed, what the copy shows
# (show.awk). The first two shown tell which URL belongs to which link. Prints each difference from
# what is expected; status 1 when there is one.

function fault(message) {
    print message
    faults = 1
}

# The last name in a path or URL.
function last_name(path) {
    path = unescaped(path)
    gsub(/&amp;/, "\\&", path)
    gsub(/&apos;/, "'", path)
    sub(/[\/\\]+$/, "", path)
    sub(/.*[\/\\]/, "", path)
    return path
}

# What is displayed when a text becomes `target`: a paragraph mark at its end stays.
function displayed(old_text, target) {
    return old_text == "" ? "" : target (old_text ~ /\\r$/ ? "\\r" : "")
}

function check_list(i,    path) {
    for (i in old_path) {
        path = i in asked ? target[i] : old_path[i]
        if (new_path[i] != path) {
            fault("link " i " is listed with " new_path[i] " in place of " path)
        }
        if (new_text[i] != (i in asked ? displayed(old_text[i], target[i]) : old_text[i])) {
            fault("link " i " displays \"" new_text[i] "\"")
        }
        if (new_id[i] != old_id[i]) {
            fault("link " i " has the id \"" new_id[i] "\" in place of \"" old_id[i] "\"")
        }
    }
    if (new_rows != old_rows) {
        fault(new_rows + 0 " links are listed in place of " old_rows + 0)
    }
}

# Line `n` of the copy, which should show what the original does but for the links asked for.
function check_line(n,    before, all, expected, i) {
    split(original[n], before, "\t")
    split(every[n], all, "\t")
    expected = original[n]
    if (before[1] ~ /^(link|use)$/ && before[2] != all[2]) {
        if (!(all[2] in link_at)) {
            fault(before[2] " became " all[2])
            return
        }
        i = link_at[all[2]]
        if (last_name(old_path[i]) != last_name(before[2])) {
            fault("link " i " is not the one that was shown as " before[2])
        }
        if (i in asked) {
            expected = before[1] "\t" url[i] "\t" before[3]
            if (before[1] == "link" && old_text[i] != "") {
                expected = before[1] "\t" url[i] "\t" target[i]
            }
        }
    } else if (before[1] ~ /^(link|use)$/ && last_name(before[2]) in shown_name) {
        fault(before[2] " is shown even where every link was changed")
    }
    if (copy[n] != expected) {
        fault("shows \"" copy[n] "\" in place of \"" expected "\"")
    }
}

BEGIN {
    FS = "\t"
}

FNR == 1 {
    ++file
}

file == 1 {
    old_path[$1] = $3
    old_id[$1] = $4
    old_text[$1] = $5
    ++old_rows
}

file == 2 {
    new_path[$1] = $3
    new_id[$1] = $4
    new_text[$1] = $5
    ++new_rows
}

file == 3 {
    target[$1] = $2
    url[$1] = $3
    link_at[$3] = $1
}

file == 4 {
    asked_targets[$2] = 1
}

file == 5 {
    original[FNR] = $0
    originals = FNR
}

file == 6 {
    every[FNR] = $0
}

file == 7 {
    copy[FNR] = $0
    copies = FNR
}

END {
    if (file != 7) {
        fault("something is empty")
        exit 1
    }
    for (i in target) {
        if (url[i] != "") {
            shown_name[last_name(old_path[i])] = i
        }
        if (target[i] in asked_targets) {
            asked[i] = 1 # all uses of one object change together
        }
    }
    check_list()
    for (n = 1; n <= originals || n <= copies; ++n) {
        check_line(n)
    }
    exit faults
}
