#!/usr/bin/env bash
# The server as a program, under real clients: ODBC through unixODBC's isql with the connection string that
# the wizard uses, and FreeTDS's tsql. Usage: clients.sh PATH-TO-sqlstandin
set -u
server=$1
folder=$(mktemp -d)
failures=0
pid=

stop() {
  [[ -n $pid ]] && kill "$pid" 2>/dev/null && wait "$pid"
  pid=
}
trap 'stop; rm -rf "$folder"' EXIT

# expect WHAT TEXT PATTERN: the text has a line that matches the pattern.
expect() {
  if grep -qE -- "$3" <<<"$2"; then
    echo "passed: $1"
  else
    echo "FAILED: $1: no line matches '$3' in:"$'\n'"$2"
    failures=$((failures + 1))
  fi
}

listening() {
  for _ in $(seq 100); do
    port=$(sed -n 's/^listening on 127\.0\.0\.1://p' "$folder/out")
    [[ -n $port ]] && return
    sleep 0.05
  done
  echo "FAILED: the server did not start: $(cat "$folder/out")"
  exit 1
}

start() {
  : >"$folder/out"
  SQLSTANDIN_PASSWORD='Secret1' "$server" --port 0 --data "$folder/state" --drive "C=$folder/c" \
    --journal "$folder/journal" "$@" >"$folder/out" 2>&1 &
  pid=$!
  listening
}

mkdir -p "$folder/c/Data" "$folder/odbc"
cat >"$folder/odbc/odbcinst.ini" <<'INI'
[SQL Server]
Driver=libtdsodbc.so
TDS_Version=7.3
INI
: >"$folder/odbc/odbc.ini"
export ODBCSYSINI=$folder/odbc FREETDSCONF=/dev/null

start
connection="driver={SQL Server};server=127.0.0.1,$port;uid=sa;pwd=Secret1;database=Master"
text=$(printf '%s\n' "CREATE DATABASE Sales ON (NAME=S, FILENAME='C:\\data\\Sales.mdf')" \
  'USE Sales CREATE TABLE t (Id INT IDENTITY(1,1), Name NVARCHAR(20), Price FLOAT)' \
  "INSERT INTO t VALUES (N'Ünal', 2.5), (N'b', NULL)" 'SELECT Name, Price FROM t WHERE Id = 1' \
  'SELECT * FROM Nowhere' | isql -k "$connection" -e -b -v 2>&1)
expect "ODBC reads rows" "$text" '\| Ünal +\| 2\.5 '
expect "ODBC sees the error" "$text" "S0002.*Invalid object name 'Nowhere'"

kill -TERM "$pid"
wait "$pid"
expect "SIGTERM ends it cleanly" "exit $?" '^exit 0$'
expect "the database stands at its path" "$(ls "$folder/c/Data")" '^Sales\.mdf$'

start --cut-text 'cut here' --report "$folder/report" --strict
expect "a restart keeps the data" "$(printf 'SELECT COUNT(*) FROM Sales..t\ngo\n' |
  tsql -H 127.0.0.1 -p "$port" -U sa -P Secret1 2>&1)" '^2$'
expect "a cut connection is noticed" "$(printf "PRINT 'cut here'\ngo\n" |
  tsql -H 127.0.0.1 -p "$port" -U sa -P Secret1 2>&1)" 'Unexpected EOF from the server'
expect "a second server is refused the folder" "$(SQLSTANDIN_PASSWORD=x "$server" --port 0 \
  --data "$folder/state" 2>&1)" '^sqlstandin: the data folder cannot be used'
expect "a password is asked for" "$(env -u SQLSTANDIN_PASSWORD "$server" --data "$folder/x" 2>&1)" \
  '^sqlstandin: no password'
printf 'MERGE x\ngo\n' | tsql -H 127.0.0.1 -p "$port" -U sa -P Secret1 >/dev/null 2>&1
rm "$folder/report" && kill -USR1 "$pid"
for _ in $(seq 100); do [[ -e $folder/report ]] && break || sleep 0.05; done
expect "the report, while it runs" "$(tr -d '\n' <"$folder/report")" \
  '"strict": true.*"fates": "c.*r".*does not know MERGE \(line 1\).*"dbo.t", *"rows": 2'
expect "no password in the journal" "$(grep -c Secret1 "$folder/journal")" '^0$'
stop

# A machine that has nothing left for a client: without descriptors it waits, without a thread it is turned
# away, and the next one finds the server as it was.
asks() { [[ $(printf 'SELECT 7\ngo\n' | TDSVER=7.4 tsql -H 127.0.0.1 -p "$port" -U sa -P Secret1 2>&1) == *$'\n7\n'* ]]; }
few=$(ulimit -Sn)
ulimit -Sn 64
start
ulimit -Sn "$few"
asks # the sanitizers look at an object of a new type through a pipe, which they could not open later
for _ in $(seq 64); do exec {client}<>"/dev/tcp/127.0.0.1/$port" && clients+=("$client"); done
for _ in $(seq 1200); do grep -q wait "$folder/out" && break || sleep 0.05; done
ticks() { awk '{print $14 + $15}' "/proc/$pid/stat"; } # of 10 ms
before=$(ticks)
sleep 0.5
expect "who waits for a descriptor takes no processor's time" "$(($(ticks) - before < 10))" '^1$'
for client in "${clients[@]}"; do exec {client}>&-; done
expect "a client after those that have gone" "$(asks && echo answered)" '^answered$'
stop
expect "they had to wait" "$(cat "$folder/out")" '^sqlstandin: clients have to wait: Too many open files$'
few=$(ulimit -Ss)
ulimit -Ss $((1 << 36)) # no address space has room for such a stack
start
ulimit -Ss "$few"
expect "two clients without a thread" "$(asks || asks ||
  grep -cx 'sqlstandin: a client is turned away: Resource temporarily unavailable' "$folder/out")" '^2$'
stop

SQLSTANDIN_PASSWORD=Secret1 timeout 30 "$server" --port 0 --data "$folder/state" --journal /dev/full \
  >"$folder/out" 2>&1 &
pid=$!
listening
tsql -H 127.0.0.1 -p "$port" -U sa -P Secret1 </dev/null >/dev/null 2>&1
wait "$pid"
expect "a journal that cannot be written ends it" "exit $?, $(tail -n 1 "$folder/out")" \
  '^exit 1, sqlstandin: the journal cannot be written: /dev/full: No space left on device$'
pid=
exit $((failures > 0))
