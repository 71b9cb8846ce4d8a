// Screenshots of the page, to be looked at: `npm run look -- FOLDER`, with PERCH as in tests/perch/program.ts.
import type { Page } from 'playwright-core';
import { closeBrowser, openAt, settled } from './browser/page';
import { View, plugin, sample } from './perch/program';

const folder = process.argv[2] ?? 'dist';
const sizes = [
  { width: 1440, height: 900 },
  { width: 1024, height: 768 },
];
const shot = ['-i', sample('shot/beauty.####.png'), '--control-layer', sample('shot/depth.####.png')];

async function shoot(page: Page, name: string): Promise<void> {
  await settled(page);
  await page.screenshot({ path: `${folder}/${name}.png` });
}

for (const viewport of sizes)
  for (const colorScheme of ['dark', 'light'] as const) {
    const name = `${viewport.width}-${colorScheme}`;
    const pull = ['--focal-point', '1:20,20:70:smooth', '--in-focus-range', '4', '--maximum-blur', '25', '--blur-type', 'Fine'];
    const view = await View.start([...shot, '-o', '{}/pull.####.png', ...pull]);
    const { page, complaints, close } = await openAt(view.address, { viewport, colorScheme });
    await page.getByRole('slider', { name: 'Frame', exact: true }).fill('16');
    const box = await page.getByRole('img', { name: 'Result' }).boundingBox();
    if (!box) throw new Error('the page has no picture');
    await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
    await page.getByText('result', { exact: true }).waitFor();
    await shoot(page, name);
    for (const comparison of viewport.width === 1440 ? ['Wipe', 'Side by side', 'Overlay'] : []) {
      await page.getByRole('button', { name: comparison, exact: true }).click();
      await page.getByRole('button', { name: comparison, exact: true, pressed: true }).waitFor();
      await shoot(page, `${name}-${comparison.toLowerCase().replaceAll(' ', '-')}`);
    }
    if (complaints.length > 0) console.log(complaints);
    await close();
    await view.end();
  }

const view = await View.start(['--plugin', plugin('Invert'), '-i', sample('still/beauty.png'), '-o', '{}/still.png']);
const { page, close } = await openAt(view.address, { viewport: { width: 1440, height: 900 } });
await shoot(page, 'another-effect');
await close();
await view.end();
await closeBrowser();
