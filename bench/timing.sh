# Shared by the benchmark scripts: source it.

# Microseconds of one run of "$@", its output dropped; a failure ends the
# script.
timedMicroseconds() {
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
    end=$(date +%s%N)
    echo $(((end - start) / 1000))
}

# The same in milliseconds.
timed() {
    local microseconds
    microseconds=$(timedMicroseconds "$@") || exit 1
    echo $((microseconds / 1000))
}
