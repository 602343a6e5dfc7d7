# A private PostgreSQL server for tests and benchmarks: its own data, a free port of the loopback address, no
# socket file, gone when the script ends. Source it after common.sh.
# shellcheck shell=bash
#
#   trap pg_stop EXIT          before pg_start: it also clears away what a failed start has made
#   pg_start build/dev/postgres
#
# leaves a database "SORVANE" that belongs to the role "SORVANE" with the password SECRET (upper case, as the
# login sends them), and exports SORVANE_TEST_PG_HOST and SORVANE_TEST_PG_PORT.

# Nothing of the user's own PostgreSQL settings may lead a client elsewhere.
for pg_variable in "${!PG@}"; do
  unset "$pg_variable"
done

pg_wanted= # where the caller wants the server's folder
pg_folder= # where it is: elsewhere when the server's user cannot get at the place that is wanted
pg_bin=    # the server's programs

pg_start() {
  pg_wanted=$1
  pg_bin=$(pg_find_programs)
  if ((EUID == 0)); then
    id -u postgres >/dev/null 2>&1 ||
      die 'PostgreSQL refuses to run as root, and the user postgres is missing (Debian'\''s package postgresql makes it)'
  fi
  mkdir -p -- "$(dirname -- "$pg_wanted")"
  # Two runs in one build folder would pull the data from under each other.
  exec {pg_lock}>"$pg_wanted.lock"
  flock --nonblock "$pg_lock" || {
    pg_wanted=
    die "another run uses $1"
  }
  pg_clear "$pg_wanted"
  pg_make_folder
  pg_make_cluster
  pg_launch
  pg_check_login
}

# Ends the server and removes its data; its log stays beside the folder. Harmless when nothing was started.
pg_stop() {
  if [[ -z $pg_wanted ]]; then
    return
  fi
  trap '' INT TERM HUP
  cp -- "$pg_folder/log" "$pg_wanted.log" 2>/dev/null || true
  pg_clear "$pg_wanted" || true
  pg_wanted=
}

# Prints the folder of the newest server installed; Debian keeps the programs out of PATH.
pg_find_programs() {
  local programs
  programs=$(printf '%s\n' /usr/lib/postgresql/*/bin/postgres | sort -V | tail -n 1)
  if [[ ! -x $programs ]]; then
    programs=$(command -v postgres) || die 'no PostgreSQL server on this machine (Debian'\''s package postgresql)'
  fi
  dirname -- "$programs"
}

# Runs a command as the user the server runs as, which may be unable to enter the working directory.
pg_as_server() {
  (
    cd / || exit
    if ((EUID == 0)); then
      exec runuser -u postgres -- "$@"
    fi
    exec "$@"
  ) </dev/null {pg_lock}>&-
}

# pg_clear FOLDER: stop the server that runs from FOLDER, if one does, and remove it all. A run that was killed
# outright leaves such a server.
pg_clear() {
  local folder
  folder=$(readlink -f -- "$1")
  if [[ -e $folder/data/postmaster.pid ]]; then
    pg_as_server "$pg_bin/pg_ctl" stop -D "$folder/data" -m fast -w -t 30 >/dev/null 2>&1 ||
      pg_as_server "$pg_bin/pg_ctl" stop -D "$folder/data" -m immediate -w -t 30 >/dev/null 2>&1 || true
  fi
  rm -rf -- "$folder"
  rm -f -- "$1"
}

# Makes the server's folder at $pg_wanted; or, when its user cannot work there, in /tmp with a link at $pg_wanted.
pg_make_folder() {
  pg_folder=$pg_wanted
  mkdir -m 700 -- "$pg_folder"
  if ((EUID == 0)) && ! { chown postgres: "$pg_folder" && pg_as_server test -w "$pg_folder"; } 2>/dev/null; then
    rmdir -- "$pg_folder"
    pg_folder=$(mktemp -d /tmp/sorvane-postgres.XXXXXX)
    chown postgres: "$pg_folder"
    ln -s -- "$pg_folder" "$pg_wanted"
  fi
}

pg_make_cluster() {
  local data=$pg_folder/data
  pg_as_server "$pg_bin/initdb" -D "$data" -U postgres -A trust --encoding=UTF8 --locale=C.UTF-8 --no-sync \
    >"$pg_folder/initdb.log" 2>&1 || {
    cat "$pg_folder/initdb.log" >&2
    die 'the private PostgreSQL database could not be made (see above)'
  }
  # The data lasts for one run: speed before safety. No socket file: its folder would need a short path.
  cat >>"$data/postgresql.conf" <<'TEXT'
listen_addresses = '127.0.0.1'
unix_socket_directories = ''
fsync = off
synchronous_commit = off
full_page_writes = off
timezone = 'UTC'
datestyle = 'ISO, YMD'
TEXT
  echo 'host all all 127.0.0.1/32 scram-sha-256' >"$data/pg_hba.conf"
  # The single-user server reports errors and exits with 0 all the same; pg_check_login finds out.
  pg_single_user 'CREATE ROLE "SORVANE" LOGIN PASSWORD '\''SECRET'\'
  pg_single_user 'CREATE DATABASE "SORVANE" OWNER "SORVANE"'
}

# pg_single_user STATEMENT: run one statement in the data itself, without a server and a login.
pg_single_user() {
  pg_as_server sh -c 'printf "%s\n" "$1" | "$2" --single -D "$3" postgres' - "$1" "$pg_bin/postgres" "$pg_folder/data" \
    >>"$pg_folder/initdb.log" 2>&1 || {
    cat "$pg_folder/initdb.log" >&2
    die "the private PostgreSQL database could not be prepared (see above)"
  }
}

# Starts the server on a port that is free, and exports where it is.
pg_launch() {
  local attempt port
  for ((attempt = 0; attempt < 50; ++attempt)); do
    # Below the range from which the kernel gives ports to clients.
    port=$((20000 + RANDOM % 12000))
    if pg_as_server "$pg_bin/pg_ctl" start -D "$pg_folder/data" -l "$pg_folder/log" -o "-p $port" -w -t 60 >/dev/null 2>&1; then
      export SORVANE_TEST_PG_HOST=127.0.0.1 SORVANE_TEST_PG_PORT=$port
      return
    fi
    grep -q 'could not bind IPv4 address' "$pg_folder/log" || break
    rm -f -- "$pg_folder/log"
  done
  cat "$pg_folder/log" >&2 || true
  die 'the private PostgreSQL server did not start (see above)'
}

pg_check_login() {
  PGPASSWORD=SECRET psql -X -q -h "$SORVANE_TEST_PG_HOST" -p "$SORVANE_TEST_PG_PORT" -U SORVANE -d SORVANE \
    -c 'CREATE TABLE login_works (n integer); DROP TABLE login_works' >/dev/null || {
    cat "$pg_folder/initdb.log" >&2
    die 'the private PostgreSQL server does not let the role SORVANE in (see above)'
  }
}
