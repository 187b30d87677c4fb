# shellcheck shell=bash
# Shared by every command: where the checkout lies, and how a command speaks and quotes.

set -euo pipefail

checkout=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
SECONDS=0

# say TEXT: one line of progress, with the seconds since the command began.
say() { printf '[%3ds] %s\n' "$SECONDS" "$*"; }

# die TEXT: ends the command with a message that says what to do about it.
die() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# usage: prints the comment on top of the command's own file, which is its manual.
usage() { sed -n '2,/^[^#]/{/^#/s/^# \{0,1\}//p}' "$0"; }

# shell_quote TEXT: TEXT as one word for a shell that reads it.
shell_quote() { printf "'%s'" "${1//\'/\'\\\'\'}"; }

# url_escape TEXT: TEXT with everything but letters, digits and -._/ percent-encoded, as the
# settings file wants its values.
url_escape() {
    local LC_ALL=C text=$1 i c
    for ((i = 0; i < ${#text}; i++)); do
        c=${text:i:1}
        case $c in
            [A-Za-z0-9._/-]) printf '%s' "$c" ;;
            *) printf '%%%02X' "'$c" ;;
        esac
    done
}

# random_password: 32 letters and digits.
random_password() { od -An -N16 -tx1 /dev/urandom | tr -d ' \n'; }

# write_file MODE PATH: standard input becomes PATH, which is never seen half-written or with
# wider rights than MODE.
write_file() {
    (umask 077 && cat >"$2.new")
    chmod "$1" "$2.new"
    mv -f "$2.new" "$2"
}

# port_answers PORT [ADDRESS]: whether anything listens on that port of this machine.
port_answers() { (exec 3<>"/dev/tcp/${2:-127.0.0.1}/$1") 2>/dev/null; }

# show_log FILE: the end of a log, on standard error, below the message that it explains.
show_log() { [[ ! -s $1 ]] || tail -n 20 "$1" | sed 's/^/    /' >&2; }
