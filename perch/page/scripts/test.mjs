// Bundles the tests and runs them: `npm test` all of them, `npm test -- unit` those of that folder. More
// arguments go to node's test runner.
import { spawnSync } from 'node:child_process';
import { readdirSync } from 'node:fs';
import { bundle } from './bundle.mjs';

const [folder, ...options] = process.argv.slice(2);
const folders = folder ? [folder] : ['unit', 'browser', 'perch'];
const tests = folders.flatMap((name) =>
  readdirSync(`tests/${name}`)
    .filter((file) => file.endsWith('.test.ts'))
    .map((file) => `tests/${name}/${file}`),
);
const files = await bundle(tests);
const { status } = spawnSync(process.execPath, ['--test', ...options, ...files], { stdio: 'inherit' });
process.exit(status ?? 1);
