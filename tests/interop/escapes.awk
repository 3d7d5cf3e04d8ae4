# A URL without its %-escapes.

function digit(text) {
    return index("0123456789abcdef", tolower(text)) - 1
}

function unescaped(url,    done) {
    while (match(url, /%[0-9A-Fa-f][0-9A-Fa-f]/)) {
        done = done substr(url, 1, RSTART - 1) \
               sprintf("%c", 16 * digit(substr(url, RSTART + 1, 1)) + digit(substr(url, RSTART + 2, 1)))
        url = substr(url, RSTART + 3)
    }
    return done url
}
