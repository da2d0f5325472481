#!/usr/bin/env bash
# Runs the installed host as a person would. Usage: host_test.sh HOST SOURCE_DIR
set -u
host=$1
work=$(mktemp -d)
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
cd "$work" || exit 1
passed=0 failed=0

# check NAME COMMAND...: the command must succeed.
check() {
  local name=$1
  shift
  if "$@"; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAILED: $name"
    echo "  status $status, standard output: $(head -c 400 out.txt)"
    echo "  standard error: $(head -c 400 err.txt)"
  fi
}
# run ARGUMENTS...: the host's status, output and errors.
run() {
  "$host" "$@" >out.txt 2>err.txt </dev/null
  status=$?
}
status_is() { [ "$status" -eq "$1" ]; }
says() { grep -qF -- "$1" out.txt; }
one_error_line() { [ "$(wc -l <err.txt)" -eq 1 ] && grep -qF -- "$1" err.txt; }
quiet() { [ ! -s err.txt ]; }
absent() { [ ! -e "$1" ]; }
only_files() { [ "$(ls -A | grep -vxE 'out.txt|err.txt' | sort | tr '\n' ' ')" = "$1 " ]; }
# bytes FILE OFFSET COUNT: as hex without blanks.
bytes() { od -An -v -tx1 -j"$2" -N"$3" "$1" | tr -d ' \n'; }
bytes_are() { [ "$(bytes "$1" "$2" "$3")" = "$4" ]; }

# le16 N, le32 N: little-endian bytes as printf escapes.
le16() { printf '\\x%02x\\x%02x' $(($1 & 255)) $(($1 >> 8 & 255)); }
le32() { printf '%s%s' "$(le16 $(($1 & 65535)))" "$(le16 $(($1 >> 16 & 65535)))"; }
# bmp24 FILE WIDTH HEIGHT BLUE GREEN RED: a bitmap of one colour; the width must be a multiple of 4.
bmp24() {
  local size=$(($2 * 3 * $3)) pixel
  printf 'BM'"$(le32 $((size + 54)))$(le32 0)$(le32 54)$(le32 40)$(le32 "$2")$(le32 "$3")$(le16 1)$(le16 24)" >"$1"
  printf "$(le32 0)$(le32 "$size")$(le32 2834)$(le32 2834)$(le32 0)$(le32 0)" >>"$1"
  pixel=$(printf '\\x%02x\\x%02x\\x%02x' "$4" "$5" "$6")
  for ((i = 0; i < $2 * $3; ++i)); do printf '%s' "$pixel"; done | xargs -0 printf >>"$1"
}

# --- the ordinary way
bmp24 in.bmp 8 4 10 20 30
run convert in.bmp out.bmp
check "convert succeeds" status_is 0
check "convert is quiet" quiet
check "a converted bitmap is 24 bits" bytes_are out.bmp 28 2 1800
check "its pixels are those of the input" bytes_are out.bmp 54 6 0a141e0a141e
check "nothing but the output appears" only_files "in.bmp out.bmp"
run info in.bmp
check "info succeeds" status_is 0
check "info tells the size" says "4 rows, 8 columns"
check "info tells the pixel type" says "RG32"
run info --json in.bmp out.bmp
check "info --json succeeds" status_is 0
check "info --json tells the rows" says '"rows": 4'
run formats
check "formats lists bitmaps" says "bmp dib"
run formats --json
check "formats --json lists bitmaps" says '"code": "BMP "'
run pixels
check "pixels lists the 32-bit type" says "ColB"
run show --color none in.bmp
check "show succeeds" status_is 0
check "show prints two lines for four rows" [ "$(wc -l <out.txt)" -eq 2 ]
run --version
check "--version" says "framewright "
run --help
check "--help" says "convert"

# --- options
run convert in.bmp small.bmp --size 2x4
check "--size scales" bytes_are small.bmp 18 8 0400000002000000
run convert in.bmp grey.bmp --pixel gry8
check "--pixel converts through grey" bytes_are grey.bmp 54 3 141414
run convert in.bmp mapped.bmp --pixel Map8 --palette standard --dither
check "--palette standard" status_is 0
run convert in.bmp out.bmp --size 2by4
check "a wrong size is wrong usage" status_is 2
run convert in.bmp out.bmp --pixel nope
check "an unknown pixel type fails" status_is 1
check "and is named" one_error_line "nope"
run convert in.bmp
check "a missing argument is wrong usage" status_is 2
check "told in one line" one_error_line "framewright: "
run
check "no command is wrong usage" status_is 2
run convert in.bmp out.xyz
check "an unknown extension fails" status_is 1
check "and is named" one_error_line "out.xyz"
rm -f small.bmp grey.bmp mapped.bmp out.bmp

# --- bad input
run convert missing.bmp out.bmp
check "a missing file fails" status_is 1
check "and is named" one_error_line "missing.bmp"
check "and leaves no output" absent out.bmp
head -c 20 in.bmp >short.bmp
run convert short.bmp out.bmp
check "a truncated header fails" status_is 1
check "with the file's name" one_error_line "short.bmp"
check "and leaves no output" absent out.bmp
echo 'This is a shopping list, and no picture at all: milk, bread, and some butter for the cake.' >list.bmp
run convert list.bmp out.bmp
check "a text with a bitmap's extension fails" status_is 1
check "with the file's name" one_error_line "list.bmp"
check "and leaves no output" absent out.bmp
cp list.bmp list.txt
run info list.txt in.bmp
check "a file that no format takes fails" status_is 1
check "with its name" one_error_line "list.txt"
check "and the next file is still told" says "4 rows, 8 columns"
mkdir folder.bmp
run convert folder.bmp out.bmp
check "a folder as input fails" status_is 1
run convert in.bmp folder.bmp
check "a folder as output fails" status_is 1
check "with its name" one_error_line "folder.bmp"
rm -rf short.bmp list.bmp list.txt folder.bmp

# --- output that can't be written
run convert in.bmp nowhere/out.bmp
check "a missing folder fails" status_is 1
check "with the output's name" one_error_line "nowhere/out.bmp"
mkdir locked
chmod 555 locked
if [ ! -w locked ]; then
  run convert in.bmp locked/out.bmp
  check "a locked folder fails" status_is 1
  check "with the output's name" one_error_line "locked/out.bmp"
fi
rm -rf locked
bmp24 big.bmp 64 64 1 2 3
echo 'precious' >kept.bmp
(ulimit -f 4 && exec "$host" convert big.bmp kept.bmp) >out.txt 2>err.txt
status=$?
check "a full disk fails" status_is 1
check "with one line" one_error_line "kept.bmp"
check "and the old file stays" grep -q precious kept.bmp
check "and nothing is left behind" only_files "big.bmp in.bmp kept.bmp"
rm -f big.bmp kept.bmp

# --- over an existing file, in place, through a link
bmp24 long.bmp 16 16 9 9 9
run convert in.bmp long.bmp
check "a longer file is replaced whole" [ "$(stat -c %s long.bmp)" -eq $((54 + 8 * 3 * 4)) ]
cp in.bmp same.bmp
run convert same.bmp same.bmp
check "input and output may be one file" cmp -s in.bmp same.bmp
ln -s long.bmp link.bmp
run convert in.bmp link.bmp
check "a link stays a link" [ -L link.bmp ]
rm -f long.bmp same.bmp link.bmp

# --- numbered sequences
for i in 1 2 3; do bmp24 shot0$i.bmp 4 4 $((i * 10)) 0 0; done
run info shot01.bmp
check "info counts a sequence" says "frames    3"
run convert shot01.bmp copy01.bmp
check "a sequence is converted" status_is 0
check "frame by frame" only_files "copy01.bmp copy02.bmp copy03.bmp in.bmp shot01.bmp shot02.bmp shot03.bmp"
check "each from its own" bytes_are copy03.bmp 54 3 1e0000
run convert shot01.bmp copy08.bmp --frames 1-2
check "--frames takes a part, numbered from the output's number" bytes_are copy08.bmp 54 3 140000
check "to the last" bytes_are copy09.bmp 54 3 1e0000
run convert shot01.bmp end98.bmp
check "a sequence that outgrows its digits fails" status_is 1
check "with the output's name" one_error_line "end98.bmp"
check "and writes nothing" absent end98.bmp
run convert shot02.bmp one.bmp
check "an output without a number is the file named" bytes_are one.bmp 54 3 140000
run convert shot01.bmp part.bmp --frames 0-1
check "--frames with no number inserts one" bytes_are part0002.bmp 54 3 140000
run convert shot01.bmp out.bmp --frames 7
check "a frame that is not there fails" status_is 1
check "with the input's name" one_error_line "shot01.bmp"

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
