# Sourced: where this machine gets its packages from, so that nothing here has to name a mirror.

# Writes the sources of a distribution's packages, by its codename, into the empty folder TARGET: what the apt folder
# FROM says of its suites, in either form that apt reads, with source packages in place of binary ones.
write_package_sources() {
  local from=$1 codename=$2 target=$3 file
  for file in "$from"/sources.list "$from"/sources.list.d/*.list; do
    [ -e "$file" ] && line_sources "$codename" "$file" >"$target/$(basename "$file" .list).list"
  done
  for file in "$from"/sources.list.d/*.sources; do
    [ -e "$file" ] && paragraph_sources "$codename" "$file" >"$target/$(basename "$file")"
  done
  return 0
}

# deb [OPTIONS] URI SUITE COMPONENT…
line_sources() {
  awk -v suite="^$1(-.*)?$" '
    $1 == "deb" {
      sub(/^[ \t]*deb[ \t]+/, "")
      options = match($0, /^\[[^]]*\]/) ? substr($0, 1, RLENGTH) " " : ""
      $0 = substr($0, length(options) + 1)
      if ($2 ~ suite)
        print "deb-src " options $0
    }' "$2"
}

# Paragraphs of "Types: …", "URIs: …", "Suites: …" and so on; everything but the types stays.
paragraph_sources() {
  awk -v RS= -v suite="[: \t]$1(-[^ \t]*)?([ \t]|$)" '
    {
      count = split($0, lines, "\n")
      types = suites = text = ""
      for (i = 1; i <= count; i++) {
        field = tolower(lines[i])
        if (field ~ /^types:/) {
          types = lines[i]
          lines[i] = "Types: deb-src"
        }
        if (field ~ /^suites:/)
          suites = lines[i]
        text = text lines[i] "\n"
      }
      if (types ~ /[: \t]deb([ \t]|$)/ && suites ~ suite)
        print text
    }' "$2"
}
