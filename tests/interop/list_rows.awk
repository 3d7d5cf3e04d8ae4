# The links of `pptlinks list --json` as rows: index, kind, path, id and displayed text, separated by
# tabs. A paragraph mark in a text stays "\r", as in the input.

function value_of(link, name,    text) {
    if (!match(link, "\"" name "\":\"([^\"\\\\]|\\\\.)*\"")) {
        return ""
    }
    text = substr(link, RSTART + length(name) + 4, RLENGTH - length(name) - 5)
    gsub(/\\"/, "\"", text)
    gsub(/\\\\/, "\\", text)
    return text
}

{
    count = split($0, links, /\{"index":/)
    for (i = 2; i <= count; ++i) {
        printf "%d\t%s\t%s\t%s\t%s\n", links[i] + 0, value_of(links[i], "kind"),
            value_of(links[i], "path"), value_of(links[i], "id"), value_of(links[i], "text")
    }
}
