// Runs one TypeScript file: `node scripts/run.mjs tests/look.ts FOLDER`.
import { spawnSync } from 'node:child_process';
import { bundle } from './bundle.mjs';

const [file, ...options] = process.argv.slice(2);
const [script] = await bundle([file]);
const { status } = spawnSync(process.execPath, [script, ...options], { stdio: 'inherit' });
process.exit(status ?? 1);
