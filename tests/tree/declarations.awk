# Lists the functions and exported variables that C headers declare, one a line: the name, "exported" or "-" (an _API
# macro marks it), "described" or "-" (a /** comment stands right before it).
function report(name, statement) {
    print name, (statement ~ /_API[ \t\n*]/ ? "exported" : "-"), (statement ~ /^[ \t\n]*\001/ ? "described" : "-")
}
function last_word(text) {
    gsub(/\[[^\]]*\]|[ \t\n]+$/, "", text)
    sub(/.*[^A-Za-z0-9_]/, "", text)
    return text
}
function declaration(statement,    count, names, i, head) {
    gsub(/__attribute__ *\(\([a-z_]*(\([^)]*\))?\)\)/, "", statement)
    if (statement ~ /(^|[ \t\n\001])(typedef|static_assert|_Static_assert)[ \t\n(]/) return
    if (head = index(statement, "(")) {
        report(last_word(substr(statement, 1, head - 1)), statement)
    } else if (statement ~ /_API/) {
        count = split(statement, names, ",")
        for (i = 1; i <= count; i++) report(last_word(names[i]), statement)
    }
}
# Describing comments become one character, others vanish.
function plain(text,    out, start) {
    while (start = index(text, "/*")) {
        out = out substr(text, 1, start - 1) (substr(text, start, 3) == "/**" ? "\001" : "")
        text = substr(text, start + 2)
        text = substr(text, index(text, "*/") + 2)
    }
    return out text
}
function header(text,    depth, at, end) {
    text = plain(text)
    gsub(/extern "C" *\{/, "", text)
    while (at = match(text, /[;{}]/)) {
        end = substr(text, at, 1)
        if (end == "}" && depth > 0) depth--
        else if (depth == 0 && end == ";") declaration(substr(text, 1, at - 1))
        if (end == "{") depth++
        text = substr(text, at + 1)
    }
}
FNR == 1 { header(whole); whole = ""; continued = 0 }
/^[ \t]*#/ || continued { continued = /\\$/; next }
{ sub(/\/\/.*/, ""); whole = whole $0 "\n" }
END { header(whole) }
