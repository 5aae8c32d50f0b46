# Sourced: makes a locale whose numbers have a decimal comma, unless it is there, and names it in VRK_COMMA_LOCALE. A
# test that needs one fails without it when the variable is set.
export LOCPATH=$PWD/build/locales VRK_COMMA_LOCALE=de_DE.UTF-8
if [ ! -f "$LOCPATH/$VRK_COMMA_LOCALE/LC_NUMERIC" ]; then
  mkdir -p "$LOCPATH"
  localedef --no-archive -i de_DE -f UTF-8 "$LOCPATH/$VRK_COMMA_LOCALE"
fi
