// How much processor time this process and those that it has started have had, by what they are. It says where the time
// of a picture goes, and says it on a busy machine too.
import { readFileSync, readdirSync } from 'node:fs';

export type CpuTimes = Readonly<Record<string, number>>; // milliseconds

interface Process {
  readonly id: number;
  readonly parent: number;
  readonly time: number;
  readonly role: string;
}

const tick = 10; // ms, of the kernel's count

function roleOf(command: readonly string[]): string {
  const type = command.find((word) => word.startsWith('--type='))?.slice('--type='.length);
  if (type) return type === 'utility' ? 'network' : type;
  if (command[0]?.includes('chrom')) return 'browser';
  if (command[0]?.includes('perch')) return command.some((word) => word.startsWith('--session')) ? 'session' : 'server';
  return 'bench';
}

function read(id: string): Process | null {
  try {
    const stat = readFileSync(`/proc/${id}/stat`, 'utf8');
    const fields = stat.slice(stat.lastIndexOf(')') + 2).split(' ').map(Number);
    const command = readFileSync(`/proc/${id}/cmdline`, 'utf8').split(/[\0 ]/);
    return { id: Number(id), parent: fields[1] ?? 0, time: tick * ((fields[11] ?? 0) + (fields[12] ?? 0)), role: roleOf(command) };
  } catch {
    return null; // it has ended
  }
}

export function cpuTimes(): CpuTimes {
  const all = readdirSync('/proc').filter((name) => /^\d+$/.test(name)).map(read).filter((one) => one !== null);
  const times: Record<string, number> = {};
  const add = (root: Process) => {
    times[root.role] = (times[root.role] ?? 0) + root.time;
    for (const child of all) if (child.parent === root.id) add(child);
  };
  const self = all.find(({ id }) => id === process.pid);
  if (self) add(self);
  return times;
}
