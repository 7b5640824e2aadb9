# Shared by the benchmark scripts: source it.

# Milliseconds of one run of "$@", its output dropped; a failure ends the
# script.
timed() {
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    end=$(date +%s%N)
    echo $(((end - start) / 1000000))
}

# Microseconds of one run of "$@", as timed() does: for runs whose
# differences are below a millisecond.
timedMicroseconds() {
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    end=$(date +%s%N)
    echo $(((end - start) / 1000))
}
