#!/bin/bash
# slurm.sh PROGRAM SHOT EFFECT: Slurm itself, on this machine's loopback and in a folder of its own, runs what perch job makes
# of renders of the sequence in SHOT. Its tasks together must leave what one run leaves, also when one of them is killed in
# the middle of a frame and started again. EFFECT is the one of the tests that waits where it is told to. Works as any user, without
# systemd and without control groups.
set -u

# Whatever hangs: the daemons are ended.
if [[ -z ${SLURM_TEST_LIMIT-} ]]; then
    SLURM_TEST_LIMIT=240 exec timeout --kill-after=10 240 "$0" "$@"
fi

perch=$1 shot=$2 effect=$3
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
export SLURM_CONF=$scratch/slurm.conf

# signal_those_with VARIABLE SIGNAL: all processes that have it in their environment; false where there are none
signal_those_with() {
    local process processes
    processes=$(unset SLURM_CONF; grep -lszxF "$1" /proc/[0-9]*/environ | cut -d / -f 3 | grep -vx $$)
    for process in $processes; do
        kill -s "$2" "$process" 2>/dev/null
    done
    [[ -n $processes ]]
}

# Daemons, steps and tasks have the name of the configuration in their environment, whoever their parents are.
end_all() {
    local limit=$((SECONDS + 5))
    while ((SECONDS < limit)) && signal_those_with "SLURM_CONF=$SLURM_CONF" TERM; do sleep 0.1; done
    signal_those_with "SLURM_CONF=$SLURM_CONF" KILL
    rm -rf "$scratch"
}
trap end_all EXIT
trap 'exit 1' INT TERM

fail() {
    echo "failed: $*"
    tail -n 15 "$scratch"/*.log "$scratch"/*.out 2>/dev/null
    exit 1
}

# await WHAT COMMAND...: until the command succeeds, for a minute
await() {
    local what=$1 limit=$((SECONDS + 60))
    shift
    while ((SECONDS < limit)); do
        if "$@"; then return; fi
        sleep 0.1
    done
    squeue --array --states all
    fail "$what"
}

free_port() {
    local port
    while port=$((20000 + RANDOM % 12000)); (: <"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
    echo "$port"
}

chmod 755 "$scratch"
cd "$scratch" || exit
mkdir state spool
(umask 377 && head -c 128 /dev/urandom >munge.key)
host=$(hostname -s)
user=$(id -un)
cat >"$SLURM_CONF" <<CONFIGURATION
ClusterName=perch
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$(free_port)
SlurmdPort=$(free_port)
SlurmUser=$user
SlurmdUser=$user
AuthType=auth/munge
# A job that is started again waits as long as its credentials last.
AuthInfo=socket=$scratch/munge.socket,cred_expire=5
CredType=cred/munge
StateSaveLocation=$scratch/state
SlurmdSpoolDir=$scratch/spool
SlurmctldPidFile=$scratch/slurmctld.pid
SlurmdPidFile=$scratch/slurmd.pid
SlurmctldLogFile=$scratch/slurmctld.log
SlurmdLogFile=$scratch/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SwitchType=switch/none
MpiDefault=none
SchedulerType=sched/builtin
SchedulerParameters=sched_interval=1,sched_min_interval=0,batch_sched_delay=0
KillWait=1
NodeName=node NodeHostname=$host NodeAddr=127.0.0.1 CPUs=2 State=UNKNOWN
PartitionName=all Nodes=node Default=YES State=UP
CONFIGURATION

PATH=$PATH:/usr/sbin:/sbin
munged --foreground --socket="$scratch/munge.socket" --key-file="$scratch/munge.key" --pid-file="$scratch/munge.pid" \
    --log-file="$scratch/munge.log" --seed-file="$scratch/munge.seed" >munged.out 2>&1 & disown
await "munged does not listen" test -S munge.socket
slurmctld -D >slurmctld.out 2>&1 & disown
slurmd -D -N node >slurmd.out 2>&1 & disown
is_idle() { [[ $(sinfo --noheader --format %T 2>/dev/null) == idle ]]; }
await "the node is not ready" is_idle

mkdir "the shot"
cd "the shot" || exit
ln -s "$shot" plates

# array TASKS OPTION...: submits what perch job makes of a render of the sequence, and prints the job's number
array() {
    local tasks=$1
    shift
    "$perch" job slurm --tasks "$tasks" -o job.sh --overwrite -- "$perch" render -i plates/beauty.####.png --threads 1 "$@" || return
    sbatch --parsable --requeue job.sh
}
# tasks_in STATE JOB: how many
tasks_in() { squeue --noheader --array --states all --jobs "$2" --format %T | grep -cx "$1"; }
have_completed() { [[ $(tasks_in COMPLETED "$1") == "$2" ]]; }

# An array leaves what one run leaves, and its reports tell what the run's report does.
mkdir whole parts
"$perch" render -i plates/beauty.####.png --control-layer plates/depth.####.png --focal-point 1:20,24:70:smooth -q \
    -o whole/shot.####.png --report whole.json || fail "one run"
[[ $(find whole -type f | wc -l) == 24 ]] || fail "one run does not leave 24 frames"
job=$(array 3 --control-layer plates/depth.####.png --focal-point 1:20,24:70:smooth -o parts/shot.####.png --report task.#.json) ||
    fail "an array is not taken"
await "an array does not come to its end" have_completed "$job" 3
diff -r whole parts || fail "an array leaves other files than one run"
"$perch" merge-report task.*.json -o joined.json || fail "the reports of an array are not of one job"
"$here/compare-reports.py" whole.json joined.json || fail "an array reports otherwise than one run"

# A task that is killed in the middle of frame 11, and started again.
mkdir undisturbed disturbed
# The files hold a fingerprint of the values, which differ.
"$perch" render --plugin "$effect" -i plates/beauty.####.png -q --no-provenance -o undisturbed/shot.####.png || fail "one run of the other effect"
echo '{"wait-for-cancel": [{"frame": 1, "value": false}, {"frame": 11, "value": true}, {"frame": 12, "value": false}]}' >stop.json
job=$(array 2 --plugin "$effect" --preset stop.json --no-provenance -o disturbed/shot.####.png) || fail "a second array is not taken"
has_come_to_frame_11() {
    [[ -e disturbed/shot.0009.png && $(tasks_in COMPLETED "$job") == 1 && $(tasks_in RUNNING "$job") == 1 ]]
}
await "the task does not come to frame 11" has_come_to_frame_11
[[ ! -e disturbed/shot.0011.png ]] || fail "frame 11 does not wait"
signal_those_with SLURM_ARRAY_TASK_ID=1 KILL
has_failed() { [[ $(tasks_in FAILED "$job") == 1 ]]; }
await "the killed task does not end" has_failed
[[ ! -e disturbed/shot.0011.png && ! -e disturbed/shot.0013.png ]] || fail "a killed task leaves frames that it has not finished"
echo '{"wait-for-cancel": false}' >stop.json
scontrol requeue "${job}_1" || fail "the task cannot be started again"
await "the task that was started again does not come to its end" have_completed "$job" 2
diff -r undisturbed disturbed || fail "a killed and restarted task leaves other files than one run"
