// TypeScript for node: each file with what it imports as one module in dist/tests.
import { build } from 'esbuild';

export async function bundle(files) {
  await build({
    entryPoints: files,
    outdir: 'dist/tests',
    outbase: 'tests',
    outExtension: { '.js': '.mjs' },
    bundle: true,
    platform: 'node',
    format: 'esm',
    target: 'node18',
    packages: 'external',
    sourcemap: 'inline',
    logLevel: 'warning',
  });
  return files.map((file) => file.replace(/^tests/, 'dist/tests').replace(/\.ts$/, '.mjs'));
}
