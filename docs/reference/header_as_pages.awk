# What Doxygen reads in the place of the header, whose comments are written for people who read the file itself: the
# first comment becomes the main page, a section for each heading; each section of declarations becomes a group.
# Tables and examples keep their lines.

function open_text() { printf "@verbatim\n"; verbatim = 1; blanks = "" }
function close_text() { if (verbatim) print "@endverbatim"; verbatim = 0 }

# Without the asterisk and what stands in front of every line, and without empty lines in front and at the end.
function put_text(line, margin) {
  line = substr(line, margin + 1)
  if (line == "") { blanks = blanks "\n"; return }
  printf "%s%s\n", blanks, line
  blanks = ""
}

NR == 1 && $0 == "/*" { manual = 1; print "/**"; print " * @mainpage"; next }
manual && $0 == " */" { close_text(); manual = 0; print; next }
manual && /^ \* [A-Z][A-Za-z ]*$/ {
  close_text()
  name = substr($0, 4)
  id = tolower(name)
  gsub(/ /, "_", id)
  printf " * @section %s %s\n", id, name
  open_text()
  next
}
manual && verbatim { put_text($0, 5); next }
manual { print; next }

# A section: its title stands in the second line, what holds for all of it behind an empty one.
/^\/\* -+$/ {
  if (group) print "/** @} */"
  getline
  name = substr($0, 4)
  group = tolower(name)
  gsub(/ /, "_", group)
  printf "/** @defgroup %s %s\n", group, name
  section = 1
  next
}
section && /^ \* -+ \*\/$/ {
  close_text()
  print " */"
  print "/** @{ */"
  section = 0
  next
}
section && $0 == " *" && !verbatim { open_text(); next }
section && verbatim { put_text($0, 3); next }
section { print; next }

/^#endif \/\* KORVEL_UTILS_H \*\/$/ && group { print "/** @} */" }

# In descriptions the first sentence is the one that lists show, and a message is one item of a list, and its percent signs are text.
/^\/\*\*/ { description = 1 }
description {
  gsub(/%/, "\\%")
  sub(/^ \* GPU\. /, " * GPU: ")
  if (sub(/^ \*   "/, " * - \"") == 0) sub(/^ \*       /, " *   ")
}
/\*\/$/ { description = 0 }
{ print }
