# Sourced by the bench scripts: where the project's shared folder is (the plate generator, the
# corpus of real drawings). TAVRIK_SHARED when it is set, else the folder "shared" beside the
# repository when there is one, else /work/shared.
bench_repository=$(cd "$(dirname "$0")/.." && pwd)
if [ -z "${TAVRIK_SHARED:-}" ]; then
  if [ -d "$bench_repository/../shared" ]; then
    TAVRIK_SHARED=$(cd "$bench_repository/../shared" && pwd)
  else
    TAVRIK_SHARED=/work/shared
  fi
fi

# shared_file PATH: the file PATH of the shared folder; stops the script with a message naming
# it when it is missing.
shared_file() {
  if [ ! -f "$TAVRIK_SHARED/$1" ]; then
    echo "$(basename "$0"): $TAVRIK_SHARED/$1 is missing; set TAVRIK_SHARED to the shared folder that holds $1" >&2
    exit 2
  fi
  echo "$TAVRIK_SHARED/$1"
}

# gen_plates N FILE: a generated plate drawing of N entities written to FILE.
gen_plates() {
  generator=$(shared_file bench/gen_plates.py) || exit 2
  /usr/bin/python3 "$generator" "$@"
}
