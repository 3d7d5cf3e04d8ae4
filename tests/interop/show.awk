# What a presentation converted to flat XML shows, one thing on a line, fields separated by tabs:
#   master NAME, page NAME, notes      where what follows stands
#   text TEXT                          a paragraph, or a part of it before or behind a hyperlink
#   link URL TEXT                      a hyperlink in a text
#   use URL ELEMENT                    any other reference, such as a picture or an action
# Some elements have URLs with %-escapes and some without: they are undone. Needs escapes.awk.

function url_of(tag) {
    return match(tag, /xlink:href="[^"]*"/) ? unescaped(substr(tag, RSTART + 12, RLENGTH - 13)) : ""
}

function name_of(tag,    name) {
    if (!match(tag, / (style|draw):name="[^"]*"/)) {
        return ""
    }
    name = substr(tag, RSTART + 1, RLENGTH - 2)
    sub(/.*"/, "", name)
    return name
}

function put_text() {
    if (text != "") {
        print "text\t" text
    }
    text = ""
}

BEGIN {
    RS = "<"
}

{
    end = index($0, ">")
    tag = substr($0, 1, end - 1)
    element = tag
    sub(/[ \/\n].*/, "", element)
    if (tag ~ /^\//) {
        element = substr(tag, 2)
        if (element == "text:a") {
            print "link\t" url "\t" text
            text = ""
        } else if (element == "text:p" || element == "text:h") {
            put_text()
            in_paragraph = 0
        }
    } else if (element == "text:a") {
        put_text()
        url = url_of(tag)
    } else if (element == "text:p" || element == "text:h") {
        in_paragraph = tag !~ /\/$/
    } else if (element == "style:master-page") {
        print "master\t" name_of(tag)
    } else if (element == "draw:page") {
        print "page\t" name_of(tag)
    } else if (element == "presentation:notes") {
        print "notes"
    } else if (url_of(tag) != "") {
        print "use\t" url_of(tag) "\t" element
    }
    if (in_paragraph) {
        if (element ~ /^text:(s|tab|line-break)$/) {
            text = text " "
        }
        text = text substr($0, end + 1)
    }
}
