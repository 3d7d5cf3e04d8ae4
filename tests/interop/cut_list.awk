# Whether LibreOffice cuts the list of hyperlinks in a property stream, given as `od -An -v -tu4`
# prints it: it takes a property for no larger than the section's size less the section's offset,
# when that is above 0. Links behind the cut are not shown, in whatever state they are. Status 0 when
# it cuts.

{
    for (i = 1; i <= NF; ++i) {
        word[words++] = $i
    }
}

END {
    if (word[0] % 65536 != 65534 || word[6] < 2) {
        exit 1 # no property stream, or none of the user-defined properties
    }
    offset = word[16] # of the second section, the user-defined properties
    size = word[offset / 4]
    count = word[offset / 4 + 1]
    for (i = 0; i < count && i < words; ++i) {
        at = (offset + word[offset / 4 + 3 + 2 * i]) / 4
        if (word[at] == 65 && size > offset && 8 + word[at + 1] > size - offset) {
            exit 0
        }
    }
    exit 1
}
