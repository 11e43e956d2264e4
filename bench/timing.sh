# Sourced by the benchmark scripts: wall-clock timing and the figures they print.
now() { date +%s.%N; }
# Seconds since a time taken with `now`.
elapsed() { awk -v a="$1" -v b="$(now)" 'BEGIN { print b - a }'; }
# N files in T seconds, as files per second.
rate() { awk -v n="$1" -v t="$2" 'BEGIN { printf "%.1f", n / t }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
