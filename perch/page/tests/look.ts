// Screenshots of the page, to be looked at: `npm run look -- FOLDER`.
import { closeBrowser, open, settled } from './browser/page';
import type { Page } from 'playwright-core';

const folder = process.argv[2] ?? 'dist';
const sizes = [
  { width: 1440, height: 900 },
  { width: 1024, height: 768 },
];

async function pullFocus(page: Page): Promise<void> {
  await page.getByRole('spinbutton', { name: 'Maximum Blur' }).fill('45');
  await page.keyboard.press('Enter');
  await page.getByRole('spinbutton', { name: 'In-focus Range' }).fill('3');
  await page.keyboard.press('Enter');
  const result = page.getByRole('img', { name: 'Result' });
  const box = await result.boundingBox();
  if (!box) throw new Error('no picture');
  await page.mouse.click(box.x + (1021 / 1280) * box.width, box.y + (455 / 720) * box.height);
  await page.getByRole('button', { name: 'Add key' }).click();
  await page.getByRole('button', { name: 'Smooth' }).click();
  await page.getByRole('slider', { name: 'Frame', exact: true }).fill('20');
  await page.getByRole('spinbutton', { name: 'Focal Point' }).fill('27.6');
  await page.keyboard.press('Enter');
  await page.getByRole('slider', { name: 'Frame', exact: true }).fill('9');
  await page.mouse.move(box.x + 300, box.y + 200);
  await page.waitForTimeout(400);
  await settled(page);
}

for (const viewport of sizes)
  for (const colorScheme of ['dark', 'light'] as const) {
    const { page, complaints, close } = await open({ scene: 'still' }, { viewport, colorScheme });
    await pullFocus(page);
    await page.screenshot({ path: `${folder}/${viewport.width}-${colorScheme}.png` });
    if (viewport.width === 1440) {
      for (const comparison of ['Wipe', 'Side by side', 'Overlay']) {
        await page.getByRole('button', { name: comparison, exact: true }).click();
        await page.waitForTimeout(800);
        await settled(page);
        await page.screenshot({ path: `${folder}/${colorScheme}-${comparison.toLowerCase().replaceAll(' ', '-')}.png` });
      }
    }
    if (complaints.length > 0) console.log(complaints);
    await close();
  }
const { page, close } = await open({ effect: 'everything', scene: 'still' }, { viewport: { width: 1440, height: 900 } });
await page.screenshot({ path: `${folder}/everything.png` });
await close();
await closeBrowser();
