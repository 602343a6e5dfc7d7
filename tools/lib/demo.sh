# The embedded demo data source: a folder that holds a database, its own ODBC configuration, its own
# settings store and a copy of the demo statements. Source it after common.sh.
# shellcheck shell=bash

# make_demo FOLDER: make or refresh the data source in FOLDER, an absolute path that exists. What the user
# has done there stays, except that a changed schema makes the database anew.
make_demo() {
  local folder=$1
  if [[ ! $folder =~ ^[^$'\n'\;\#]*$ ]]; then
    die "the folder $folder cannot hold the demo data source: an ODBC configuration file takes no ; or # in a path"
  fi
  make_demo_database "$folder"
  make_demo_odbc "$folder"
  make_demo_settings "$folder"
  make_demo_statements "$folder"
}

make_demo_database() {
  local database=$1/demo.sqlite schema=$root/demo/schema.sql
  if [[ -e $database && ! $schema -nt $database ]]; then
    return
  fi
  say "Making the demo database $database"
  local new=$database.new
  rm -f -- "$new" "$new-journal"
  # -init: whatever the user's own ~/.sqliterc does must not shape the database.
  sqlite3 -batch -bail -init /dev/null "$new" <"$schema" >/dev/null || die "demo/schema.sql could not be loaded"
  # A journal that a killed program left behind belongs to the old file and would damage the new one.
  rm -f -- "$database-journal"
  mv -f -- "$new" "$database"
}

make_demo_odbc() {
  local folder=$1 driver
  driver=$(demo_driver)
  cat >"$folder/odbcinst.ini" <<TEXT
# Written by tools/run at every start.
[SQLite3]
Description=SQLite 3
Driver=$driver
TEXT
  # NoCreat: a missing database is an error, not a new empty one. Timeout, in milliseconds: how long a
  # statement waits while another program holds the database.
  cat >"$folder/odbc.ini" <<TEXT
# Written by tools/run at every start.
[DEMO]
Description=The embedded demo: a wholesale plant nursery
Driver=SQLite3
Database=$folder/demo.sqlite
Timeout=5000
FKSupport=1
NoCreat=1
TEXT
}

# Prints the path of the SQLite ODBC driver: its folder is named after the machine's architecture.
demo_driver() {
  local driver
  driver=$(dpkg -L libsqliteodbc 2>/dev/null | grep '/libsqlite3odbc\.so$' | head -n 1 || true)
  if [[ ! -e $driver ]]; then
    local candidates=(/usr/lib/*/odbc/libsqlite3odbc.so /usr/lib64/libsqlite3odbc.so /usr/lib/libsqlite3odbc.so)
    for driver in "${candidates[@]}"; do
      if [[ -e $driver ]]; then
        break
      fi
    done
  fi
  if [[ ! -e $driver ]]; then
    die "the SQLite ODBC driver libsqlite3odbc.so is not on this machine (Debian's package libsqliteodbc)"
  fi
  printf '%s\n' "$driver"
}

make_demo_settings() {
  local settings=$1/Sorvane.ini
  if [[ ! -e $settings ]]; then
    printf '[Startup]\nAS400Default=DEMO\nAS400DefaultU=DEMO\n' >"$settings"
  fi
}

# The statements are opened from a copy, so that trying things out and saving them leaves the source tree
# alone. A copy that nobody has changed follows the original; .demo.sql.original tells whether anybody has.
make_demo_statements() {
  local copy=$1/demo.sql original=$1/.demo.sql.original shipped=$root/demo/demo.sql
  if [[ ! -e $copy ]] || { cmp -s -- "$copy" "$original" && ! cmp -s -- "$copy" "$shipped"; }; then
    cp -- "$shipped" "$copy"
    cp -- "$shipped" "$original"
  elif ! cmp -s -- "$shipped" "$original"; then
    say "$copy holds your changes and was kept; demo/demo.sql is newer."
  fi
}
