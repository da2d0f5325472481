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
lacks() { ! says "$1"; }
one_error_line() { [ "$(wc -l <err.txt)" -eq 1 ] && grep -qF -- "$1" err.txt; }
quiet() { [ ! -s err.txt ]; }
absent() { [ ! -e "$1" ]; }
only_files() { [ "$(ls -A | grep -vxE 'out.txt|err.txt' | sort | tr '\n' ' ')" = "$1 " ]; }
# bytes FILE OFFSET COUNT: as hex without blanks.
bytes() { od -An -v -tx1 -j"$2" -N"$3" "$1" | tr -d ' \n'; }
bytes_are() { [ "$(bytes "$1" "$2" "$3")" = "$4" ]; }

# repeated COUNT TEXT
repeated() { printf "%0.s$2" $(seq "$1"); }

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
# blues FILE WIDTH HEIGHT BLUE...: a bitmap of pixels of so much blue, as hex, from the top row's left on.
blues() {
  local file=$1 width=$2 height=$3 padding=$((($2 * 3 + 3) / 4 * 4 - $2 * 3)) x y
  shift 3
  local values=("$@")
  printf 'BM'"$(le32 54)$(le32 0)$(le32 54)$(le32 40)$(le32 "$width")$(le32 "$height")$(le16 1)$(le16 24)" >"$file"
  printf "$(le32 0)$(le32 0)$(le32 2834)$(le32 2834)$(le32 0)$(le32 0)" >>"$file"
  for ((y = height - 1; y >= 0; --y)); do
    for ((x = 0; x < width; ++x)); do printf "\\x${values[y * width + x]}\\0\\0" >>"$file"; done
    for ((x = 0; x < padding; ++x)); do printf '\0' >>"$file"; done
  done
}
# shows FILE WIDTH HEIGHT BLUE...: whether a bitmap holds just that, whatever its rows are padded with.
shows() {
  local file=$1 width=$2 height=$3 y at
  blues expected.bin "${@:2}"
  local same=0
  bytes_are "$file" 18 8 "$(bytes expected.bin 18 8)" || same=1
  for ((y = 0; y < height; ++y)); do
    at=$((54 + y * ((width * 3 + 3) / 4 * 4)))
    bytes_are "$file" $at $((width * 3)) "$(bytes expected.bin $at $((width * 3)))" || same=1
  done
  rm expected.bin
  return $same
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
run mipmap in.bmp pyramid.bmp
check "mipmap succeeds" status_is 0
check "mipmap is quiet" quiet
check "its picture has half the rows more" bytes_are pyramid.bmp 18 8 0800000006000000
check "its last row holds the half and black" bytes_are pyramid.bmp 54 24 "$(repeated 4 0a141e)$(repeated 4 000000)"
check "the row above holds all smaller levels" bytes_are pyramid.bmp 78 24 "$(repeated 7 0a141e)000000"
check "above them is the picture" bytes_are pyramid.bmp 102 96 "$(repeated 32 0a141e)"
bmp24 odd.bmp 12 5 1 2 3
run mipmap odd.bmp pyramid.bmp
check "sides go to the nearest powers of two" bytes_are pyramid.bmp 18 8 1000000006000000
run mipmap "$2/examples/pictures/shapes-rle.bmp" pyramid.bmp
check "a picture with a palette has a mipmap too" bytes_are pyramid.bmp 18 8 80000000c0000000
run mipmap missing.bmp none.bmp
check "a missing file has none" status_is 1
check "and is named" one_error_line "missing.bmp"
check "and leaves no output" absent none.bmp
run mipmap in.bmp
check "mipmap needs an output" status_is 2
rm -f pyramid.bmp odd.bmp
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

# --- options that mean nothing
for rate in nan inf 0 -1 -inf; do
  run convert in.bmp out.bmp --rate "$rate"
  check "a rate of $rate is wrong usage" status_is 2
done
run convert in.bmp out.bmp --dither
check "--dither without --pixel is wrong usage" status_is 2
check "and is named" one_error_line "--dither"
run convert in.bmp out.bmp --palette optimal
check "--palette without --pixel is wrong usage" status_is 2
run convert in.bmp out.bmp --pixel ColB --dither
check "--dither with a type that is not dithered fails" status_is 1
check "and both are named" one_error_line "--dither: the pixel type ColB"
run convert in.bmp out.bmp --pixel RG15 --palette standard
check "--palette with a type without a palette fails" status_is 1
check "and both are named" one_error_line "--palette: the pixel type RG15"
check "nothing of these is written" absent out.bmp
run convert in.bmp out.bmp --pixel RG15 --dither
check "15-bit pixels are dithered" status_is 0
run info in.bmp
check "a still picture has no rate" lacks "rate"
rm -f out.bmp

# --- one eye of two
blues stereo.bmp 5 4 01 02 03 04 05 11 12 13 14 15 21 22 23 24 25 31 32 33 34 35
run convert stereo.bmp eye.bmp --stereo above --eye left
check "the upper half is the left eye" shows eye.bmp 5 2 01 02 03 04 05 11 12 13 14 15
check "cut without a word" quiet
run convert stereo.bmp eye.bmp --stereo above --eye right
check "the lower half is the right eye" shows eye.bmp 5 2 21 22 23 24 25 31 32 33 34 35
run convert stereo.bmp eye.bmp --stereo above --eye right --gap 1
check "an odd rest is left over" shows eye.bmp 5 1 21 22 23 24 25
run convert stereo.bmp eye.bmp --stereo beside --eye left --gap 1
check "a gap lies between the eyes" shows eye.bmp 2 4 01 02 11 12 21 22 31 32
run convert stereo.bmp eye.bmp --gap 1 --eye right --stereo beside
check "the right eye begins behind it" shows eye.bmp 2 4 04 05 14 15 24 25 34 35
run convert stereo.bmp eye.bmp --stereo beside
check "without a word of the eye it is the left one" shows eye.bmp 2 4 01 02 11 12 21 22 31 32
run convert stereo.bmp eye.bmp --stereo beside --eye right --gap 3 --size 2x1
check "an eye is cut before it is scaled" shows eye.bmp 1 2 05 35
run convert "$2/examples/pictures/shapes-rle.bmp" whole.bmp
run convert "$2/examples/pictures/shapes-rle.bmp" eye.bmp --stereo beside --eye right
check "a picture with a palette keeps its colours" \
  [ "$(bytes eye.bmp $((54 + 60 * 240)) 240)" = "$(bytes whole.bmp $((54 + 60 * 480 + 240)) 240)" ]
rm -f eye.bmp whole.bmp
run convert stereo.bmp eye.bmp --stereo above --gap 3
check "a gap that leaves nothing fails" status_is 1
check "with the input's name" one_error_line "stereo.bmp: a gap of 3"
for options in "--eye left" "--gap 1" "--stereo aside" "--stereo above --eye third" "--stereo above --gap -1" \
  "--stereo above --gap 2147483648"; do
  run convert stereo.bmp eye.bmp $options
  check "$options is wrong usage" status_is 2
done
check "nothing of these is written" absent eye.bmp

# --- turned
blues flat.bmp 4 2 01 02 03 04 05 06 07 08
for smooth in "" --smooth; do
  run rotate flat.bmp turned.bmp --angle 90 $smooth
  check "a quarter turn $smooth goes counterclockwise" shows turned.bmp 2 4 04 08 03 07 02 06 01 05
  run rotate flat.bmp turned.bmp --angle -90 $smooth
  check "a negative one goes clockwise" shows turned.bmp 2 4 05 01 06 02 07 03 08 04
  run rotate flat.bmp turned.bmp --angle 540 $smooth
  check "half a turn" shows turned.bmp 4 2 08 07 06 05 04 03 02 01
  run rotate flat.bmp turned.bmp --angle 0 $smooth
  check "no turn" shows turned.bmp 4 2 01 02 03 04 05 06 07 08
done
check "turned without a word" quiet
bmp24 square.bmp 40 40 10 20 30
run rotate square.bmp turned.bmp --angle 45
check "a turned square needs room" bytes_are turned.bmp 18 8 3900000039000000
check "its corners are black" bytes_are turned.bmp 54 6 000000000000
check "its middle is the picture" bytes_are turned.bmp $((54 + 28 * 172 + 28 * 3)) 3 0a141e
run rotate square.bmp turned.bmp --angle 45 --smooth
check "and so is that of a smooth one" bytes_are turned.bmp $((54 + 28 * 172 + 28 * 3)) 3 0a141e
run rotate "$2/examples/pictures/shapes-rle.bmp" turned.bmp --angle 30 --smooth
check "a picture with a palette can be turned" status_is 0
for i in 1 2; do bmp24 spin0$i.bmp 8 4 $i 0 0; done
run rotate spin01.bmp spun01.bmp --angle 90
check "a sequence is turned frame by frame" bytes_are spun02.bmp 18 8 0400000008000000
check "each from its own" bytes_are spun02.bmp 54 3 020000
for angle in nan inf right 1e99 ""; do
  run rotate flat.bmp none.bmp --angle "$angle"
  check "an angle of $angle is wrong usage" status_is 2
done
run rotate flat.bmp none.bmp
check "an angle is needed" status_is 2
run rotate missing.bmp none.bmp --angle 5
check "a missing file fails" status_is 1
check "and is named" one_error_line "missing.bmp"
check "nothing of these is written" absent none.bmp
rm -f stereo.bmp flat.bmp square.bmp turned.bmp spin0?.bmp spun0?.bmp

# --- standard output that can't be written
fifo=$(mktemp -u) && mkfifo "$fifo"
exec 4<>"$fifo" 3>"$fifo" 4>&-  # a pipe whose reader has gone
rm "$fifo"
for line in --help --version "convert --help" "info in.bmp" "info --json in.bmp" formats pixels "show in.bmp"; do
  for sink in full closed pipe; do
    case $sink in
      full) "$host" $line >/dev/full 2>err.txt ;;
      closed) "$host" $line >&- 2>err.txt ;;
      pipe) "$host" $line >&3 2>err.txt ;;
    esac
    status=$?
    check "$line on standard output that is $sink fails" status_is 1
    check "and says so" one_error_line "standard output"
  done
done
exec 3>&-
"$host" convert in.bmp out.bmp >&- 2>&- <&-
status=$?
check "convert needs no standard streams" status_is 0
check "and keeps them out of its files" bytes_are out.bmp 54 6 0a141e0a141e
run convert in.bmp tall.bmp --size 9000x4
run show --color none tall.bmp
check "show prints all of a tall picture" [ "$(wc -l <out.txt)" -eq 4500 ]
rm -f out.bmp tall.bmp

# --- names with control characters
odd=$'a\nb\033[1m\177\xff.bmp'
run convert "$odd" out.bmp
check "a name with control characters is escaped in errors" one_error_line 'a\nb\x1B[1m\x7F\xFF.bmp'
cp in.bmp "$odd"
run info "$odd"
check "and in listings" says 'a\nb\x1B[1m\x7F\xFF.bmp'
# In UTF-8 by its bytes, for a shell of any locale.
run info $'\x9b\xc3\xa4\xc2\x85.bmp'
check "letters beyond ASCII are not" one_error_line $'\\x9B\xc3\xa4\\xC2\\x85.bmp'
run convert in.bmp out.bmp $'no\nsuch'
check "a wrong usage is one line too" one_error_line 'no\nsuch'
rm -f "$odd"

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
chmod 6751 same.bmp
run convert in.bmp same.bmp
check "permissions are kept, but not those to run as another" [ "$(stat -c %a same.bmp)" = 751 ]
ln -s long.bmp link.bmp
run convert in.bmp link.bmp
check "a link stays a link" [ -L link.bmp ]
run convert long.bmp link.bmp --size 2x4
check "a link to the input is written through" bytes_are long.bmp 18 8 0400000002000000
check "and stays" [ -L link.bmp ]
rm -f long.bmp
run convert in.bmp link.bmp
check "a link to nothing makes its target" cmp -s in.bmp long.bmp
ln -sfn link.bmp loop.bmp && ln -sfn loop.bmp link.bmp
run convert in.bmp link.bmp
check "links in a circle fail" status_is 1
check "with the output's name" one_error_line "link.bmp"
rm -f long.bmp same.bmp link.bmp loop.bmp

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
run convert shot01.bmp slow01.bmp --frames 1-2 --rate 5
check "--rate goes with --frames" status_is 0
check "and quietly" quiet
check "pictures keep no rate: the frames are those asked for" bytes_are slow01.bmp 54 3 140000
check "each once" bytes_are slow02.bmp 54 3 1e0000
check "and no more" absent slow03.bmp
run info shot01.bmp
check "info tells the rate of a sequence" says "rate      15 frames a second"
check "and its duration" says "duration  0.2 seconds"
check "and the size of its frames" says "size      4 rows, 4 columns"
run info shot02.bmp
check "a sequence goes from the file named on" says "frames    2"
run info shot03.bmp
check "the last file stands alone" says "frames    1"
check "and has no rate" lacks "rate"
run info --json shot01.bmp
check "info --json counts a sequence" says '"frames": 3'
check "and tells its rate" says '"rate": 15'
run convert shot02.bmp one.bmp
check "an output without a number is the file named" bytes_are one.bmp 54 3 140000
run convert shot01.bmp part.bmp --frames 0-1
check "--frames with no number inserts one" bytes_are part0002.bmp 54 3 140000
run convert shot01.bmp out.bmp --frames 7
check "a frame that is not there fails" status_is 1
check "with the input's name" one_error_line "shot01.bmp"

rm -f ./*.bmp

# --- which names are numbered
bmp24 in.bmp 4 4 7 0 0
for i in 1 2 3; do bmp24 0$i.bmp 4 4 $((i * 10)) 0 0; done
run info 01.bmp
check "a name of digits alone is a number" says "frames    3"
mkdir numbers
for name in x2024-01-15 x4294967297 x20240115_103045; do
  bmp24 numbers/$name.bmp 4 4 99 0 0
  # What these digits would be if they were one number, and the next.
  for other in 0020240115 0020240116 0000000001 0000000002; do cp in.bmp numbers/x$other.bmp; done
  run info numbers/$name.bmp
  check "$name stands alone" says "frames    1"
  run convert numbers/$name.bmp one.bmp
  check "and is itself" bytes_are one.bmp 54 3 630000
  rm -rf numbers/*
  run convert 01.bmp numbers/$name.bmp
  check "written, it is one file" [ "$(ls numbers)" = $name.bmp ]
  check "of the first frame" bytes_are numbers/$name.bmp 54 3 0a0000
  run convert 01.bmp numbers/$name.bmp --frames 0-1
  check "and never a sequence" status_is 1
  check "which is told" one_error_line "$name.bmp: a sequence needs"
done
long=x$(printf '%0250d' 0 | tr 0 n).bmp
run convert in.bmp "$long"
check "a name that leaves no room for a number is written" cmp -s in.bmp "$long"
run convert "$long" one.bmp
check "and read" cmp -s in.bmp one.bmp
rm -rf numbers ./*.bmp

# --- links in sequences: the number is that of the name given
for i in 1 2 3; do bmp24 shot0$i.bmp 4 4 $((i * 10)) 0 0; done
mkdir links
ln -s target07.bmp links/plain.bmp
run convert shot02.bmp links/plain.bmp
check "a link without a number is one file" [ "$(ls links | tr '\n' ' ')" = "plain.bmp target07.bmp " ]
check "of the frame named" bytes_are links/target07.bmp 54 3 140000
rm links/*
ln -s target.bmp links/copy02.bmp
run convert shot01.bmp links/copy01.bmp
check "a link within a sequence is written through" [ "$(ls links | tr '\n' ' ')" = "copy01.bmp copy02.bmp copy03.bmp target.bmp " ]
check "and has its frame" bytes_are links/target.bmp 54 3 140000
rm links/*
ln -s copy01.bmp links/copy02.bmp
run convert shot01.bmp links/copy01.bmp
check "two names of one file fail" status_is 1
check "with the second's name" one_error_line "links/copy02.bmp"
check "and nothing is written" [ "$(ls -A links)" = copy02.bmp ]
rm -r links

# --- a sequence that can't be published
# out_is NAMES: what is in the folder, and that the file that was there before is as it was.
out_is() { [ "$(ls -A out | tr '\n' ' ')" = "$1 " ] && [ "$(cat out/copy01.bmp)" = old ]; }
mkdir -p out/copy03.bmp
echo old >out/copy01.bmp
run convert shot01.bmp out/copy01.bmp
check "a folder in the way of the third file fails" status_is 1
check "with its name" one_error_line "out/copy03.bmp: is a folder"
check "and nothing has changed" out_is "copy01.bmp copy03.bmp"
rmdir out/copy03.bmp
ln -s nowhere/copy03.bmp out/copy03.bmp
run convert shot01.bmp out/copy01.bmp
check "a file that can't be moved into place fails" status_is 1
check "with its name" one_error_line "out/copy03.bmp: No such file"
check "and those before it are taken back" out_is "copy01.bmp copy03.bmp"
rm out/copy03.bmp
run convert shot01.bmp out/copy01.bmp
check "the same without it succeeds" status_is 0
check "and replaces the old file" cmp -s shot01.bmp out/copy01.bmp
check "leaving nothing else" [ "$(ls -A out | tr '\n' ' ')" = "copy01.bmp copy02.bmp copy03.bmp " ]
rm -r out

# --- signals, in the middle of a picture that takes long
mkdir out
# signalled SIGNAL...: sends the host each signal once it has begun to work.
signalled() {
  set -m  # or the shell lets what it runs behind itself ignore SIGINT
  "$host" convert shot01.bmp out/big.bmp --size 6000x6000 --pixel map8 --dither >out.txt 2>err.txt &
  set +m
  local pid=$! signal
  for ((started = 0; started < 500; ++started)); do
    [ -n "$(ls -A out)" ] && break
    sleep 0.01
  done
  for signal; do kill -"$signal" "$pid"; done
  wait "$pid" 2>/dev/null
  status=$?
}
for signal in "HUP 1" "INT 2" "TERM 15"; do
  signalled ${signal% *}
  check "the work is under way" [ "$started" -lt 500 ]
  check "SIG${signal% *} ends the program" status_is $((128 + ${signal#* }))
  check "which says so" one_error_line "interrupted"
  check "and leaves nothing behind" [ -z "$(ls -A out)" ]
done
signalled PIPE TERM
check "SIGPIPE does not" status_is 143
check "and nothing is left behind" [ -z "$(ls -A out)" ]
trap '' HUP
signalled HUP TERM
trap - HUP
check "nor does a signal that is ignored from the start" status_is 143
check "and nothing is left behind" [ -z "$(ls -A out)" ]
rm -r out

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
