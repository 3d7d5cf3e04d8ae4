# A new target for each row of list_rows.awk: index, target, and the URL under which the converted
# presentation shows it, separated by tabs. Set `size` to short or long, `base` to the path
# from there to the presentations. With `by_path` set, links that lead to the same place get one target.

BEGIN {
    FS = "\t"
    long = size == "long"
}

{
    number = $1
    if (by_path && ($3 in first)) {
        number = first[$3]
    }
    first[$3] = number
    if ($2 == "hyperlink") {
        # The characters of the long one are in no single-byte text.
        target = long ? "http://long.example.org/moved/новый/資料/to-another-folder/" number ".html" \
                      : "ftp://n/" number
        url = target
    } else if ($2 == "picture") {
        target = (long ? "moved/to/another/folder/with/a/long/name/" : "n") number ".png"
        url = base "/" target
    } else {
        target = (long ? "C:\\Moved\\to\\another\\folder\\with\\a\\long\\name\\" : "C:\\") number ".xyz"
        url = ""
    }
    printf "%d\t%s\t%s\n", $1, target, url
}
