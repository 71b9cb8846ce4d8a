// `perch view` itself, and the commands that its page hands on. PERCH is the program, PERCH_PLUGINS the folder of the
// effects that the host's tests load.
import { spawn } from 'node:child_process';
import type { ChildProcess } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { createInterface } from 'node:readline';
import { fileURLToPath } from 'node:url';
import { pageFolder } from '../folder';
import { readPng } from '../standin/png';
import type { Samples } from '../standin/png';

const tree = fileURLToPath(new URL('../../', pageFolder));
const program = process.env.PERCH ?? join(tree, 'build/release/bin/perch');
const plugins = process.env.PERCH_PLUGINS ?? join(tree, 'build/release/tests/perch/plugins');

export const sample = (name: string) => join(tree, 'samples', name);
export const plugin = (name: string) => join(plugins, `${name}.so`);

export class View {
  private constructor(
    private readonly process: ChildProcess,
    readonly folder: string,
    readonly address: string,
  ) {}

  // `{}` in an option stands for a folder of its own, which goes with it.
  static async start(options: readonly string[], environment: Readonly<Record<string, string>> = {}): Promise<View> {
    const folder = mkdtempSync(join(tmpdir(), 'perch-page-'));
    const words = ['view', '--no-open', ...options.map((word) => word.replace('{}', folder))];
    const env = { ...process.env, ...environment };
    const started = spawn(program, words, { cwd: folder, stdio: ['ignore', 'pipe', 'inherit'], env });
    const [line] = (await Promise.race([
      once(createInterface(started.stdout), 'line'),
      once(started, 'exit').then(([status]) => Promise.reject(new Error(`perch view ended with ${status}`))),
    ])) as [string];
    return new View(started, folder, line);
  }

  // The picture that a command renders.
  async rendered(command: string, file: string): Promise<Samples> {
    const path = `${dirname(program)}:${process.env.PATH}`;
    const shell = spawn('sh', ['-c', command], { cwd: this.folder, stdio: 'inherit', env: { ...process.env, PATH: path } });
    const [status] = (await once(shell, 'exit')) as [number];
    if (status !== 0) throw new Error(`${command} ended with ${status}`);
    return readPng(readFileSync(join(this.folder, file)));
  }

  // Ends it as Ctrl-C does; its exit code.
  async end(): Promise<number> {
    const ended = once(this.process, 'exit') as Promise<[number]>;
    this.process.kill('SIGINT');
    const [status] = await ended;
    rmSync(this.folder, { recursive: true, force: true });
    return status;
  }
}
