# shellcheck shell=bash
# The usage of a script, which sources this with its own arguments and with its usage as standard input.
# Prints the usage and ends the script if the first argument asks for help.

usage=$(cat)

# Prints the usage as an error and ends the script.
wrong_usage() {
  printf '%s\n' "$usage" >&2
  exit 2
}

case "${1:-}" in
  -h | --help) printf '%s\n' "$usage"; exit ;;
esac
