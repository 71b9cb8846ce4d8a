import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import type { Page } from 'playwright-core';
import { closeBrowser, open, settled } from './page';
import type { OpenPage } from './page';

let opened: OpenPage;
let page: Page;
const button = (name: string) => page.getByRole('button', { name, exact: true });
const result = () => page.getByRole('img', { name: 'Result' });
const frame = () => page.getByRole('slider', { name: 'Frame', exact: true });

before(async () => {
  opened = await open({ canSave: true });
  page = opened.page;
});
after(async () => {
  await opened.close();
  await closeBrowser();
});

async function curve(name: string): Promise<unknown> {
  await settled(page);
  return opened.server.shot.newest.curves[name];
}

test('keys are added, moved, changed in kind and taken away by keyboard', async () => {
  await page.getByRole('slider', { name: 'Focal Point' }).fill('20');
  await button('Key of Focal Point').press('Enter');
  await frame().fill('13');
  await page.getByRole('slider', { name: 'Focal Point' }).fill('70');
  const key = (name: RegExp) => page.getByRole('button', { name });
  await key(/^Key at frame 13: 70.0, linear/).focus();
  for (const press of ['s', 'ArrowRight', 'Shift+ArrowUp']) await page.keyboard.press(press);
  assert.deepEqual(await curve('Focal Point'), [
    { frame: 1, value: 20, key: 'linear' },
    { frame: 14, value: 71, key: 'smooth' },
  ]);
  await page.keyboard.press('Delete');
  assert.deepEqual(await curve('Focal Point'), [{ frame: 1, value: 20, key: 'linear' }]);
  await button('Undo').click();
  await key(/^Key at frame 14/).waitFor();
});

test('a key is dragged in time and value', async () => {
  const key = page.getByRole('button', { name: /^Key at frame 14/ });
  const box = await key.boundingBox();
  assert.ok(box);
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width / 2 + 200, box.y + box.height / 2 + 20, { steps: 4 });
  await page.mouse.up();
  const keys = (await curve('Focal Point')) as { frame: number; value: number }[];
  assert.equal(keys.length, 2);
  assert.ok((keys[1]?.frame ?? 0) > 14 && (keys[1]?.value ?? 99) < 71, JSON.stringify(keys));
});

test('a double click in the curve adds a key', async () => {
  const box = await page.getByRole('group', { name: 'Keys of Focal Point' }).boundingBox();
  assert.ok(box);
  await page.mouse.dblclick(box.x + 6 + ((box.width - 12) * 6) / 23, box.y + box.height / 2);
  const keys = (await curve('Focal Point')) as { frame: number; value: number }[];
  assert.deepEqual(keys.map((key) => key.frame).slice(0, 2), [1, 7]);
  assert.ok(Math.abs((keys[1]?.value ?? 0) - 50) < 2);
});

test('the shot plays in its loop at its own rate, and frames that come too late are counted', async () => {
  await page.getByRole('spinbutton', { name: 'Loop to' }).fill('12');
  await page.keyboard.press('Enter');
  opened.server.delay = 150; // at 24 frames a second three are due in the time of one picture
  const seen = await result().evaluate(
    (canvas) =>
      new Promise<number[]>((done) => {
        const frames: number[] = [];
        new MutationObserver(() => {
          frames.push(document.querySelector('perch-view')?.store.frame ?? 0);
          if (frames.length === 8) done(frames);
        }).observe(canvas, { attributes: true, attributeFilter: ['data-serial'] });
        document.querySelector('perch-view')?.timeLine.togglePlay();
      }),
  );
  await button('Pause').click();
  opened.server.delay = 0;
  assert.ok(seen.every((frame) => frame <= 12), seen.join());
  assert.ok(new Set(seen).size >= 3, seen.join());
  const text = (await page.getByText(/24 fps, \d+ dropped/).textContent()) ?? '';
  const dropped = Number(/(\d+) dropped/.exec(text)?.[1]);
  assert.ok(dropped >= 2 * 6, `${dropped} dropped, of ${seen.length} shown`);
});

test('two looks are kept apart', async () => {
  const blur = page.getByRole('slider', { name: 'Maximum Blur' });
  await blur.fill('40');
  await button('Look B').click();
  assert.equal(await blur.inputValue(), '10');
  await page.keyboard.press('x');
  assert.equal(await blur.inputValue(), '40');
});

test('the command is copied as the server gives it', async () => {
  await settled(page);
  await button('Copy command').click();
  await page.getByText('The command is copied.').waitFor();
  assert.equal(await page.evaluate(() => navigator.clipboard.readText()), opened.server.shot.state().command);
});

test('a preset is saved under a name that the server takes', async () => {
  await button('Save preset').click();
  const name = page.getByRole('textbox', { name: 'Name of the preset' });
  await name.fill('../look.json');
  await page.keyboard.press('Enter');
  await page.getByText('is not a plain file name').waitFor();
  await name.fill('dusk.json');
  await page.keyboard.press('Enter');
  await name.waitFor({ state: 'hidden' });
  assert.deepEqual(opened.server.saved, ['dusk.json']);
  opened.complaints.splice(0); // the browser notes the answer of 422 itself
});

test('a preset is loaded, and undo brings back what was there', async () => {
  const load = (text: string) =>
    page.locator('input[type=file]').setInputFiles({ name: 'look.json', mimeType: 'application/json', buffer: Buffer.from(text) });
  await load('{"maximum-blur": 77, "blur-type": "Fine"}');
  const blur = page.getByRole('spinbutton', { name: 'Maximum Blur' });
  await page.waitForFunction(() => document.querySelector('perch-view')?.store.value('Maximum Blur') === 77);
  assert.equal(await page.getByRole('combobox', { name: 'Blur Type' }).inputValue(), 'Fine');
  await page.keyboard.press('Control+z');
  assert.equal(await blur.inputValue(), '40.0');
  await load('{"blur": 1}');
  const refusal = page.getByText('the effect has no parameter "blur"');
  await refusal.waitFor();
  opened.complaints.splice(0);
  // A picture that comes later does not take it away before it is read.
  await page.getByRole('slider', { name: 'Maximum Blur' }).fill('41');
  await settled(page);
  assert.equal(await refusal.count(), 1);
  await page.getByRole('button', { name: 'Put away' }).first().click();
});

test('a preset is downloaded where the server has no folder', async () => {
  const other = await open();
  await other.page.getByRole('slider', { name: 'Focal Point' }).fill('44');
  await settled(other.page);
  const downloading = other.page.waitForEvent('download');
  await other.page.getByRole('button', { name: 'Save preset' }).click();
  const download = await downloading;
  assert.equal(download.suggestedFilename(), 'look.json');
  assert.equal((JSON.parse(readFileSync(await download.path(), 'utf8')) as Record<string, unknown>)['focal-point'], 44);
  await other.close();
});

test('a render tells its progress and its end, and can be cancelled', async () => {
  opened.server.frameTime = 2000;
  await button('Render').click();
  await page.getByRole('progressbar', { name: 'Rendering' }).waitFor();
  await button('Cancel').click();
  await page.getByText('The render was cancelled.').waitFor();
  opened.server.frameTime = 20;
  await button('Render').click();
  await page.getByText('24 frames are rendered.').waitFor();
});

test('the sharp band of the histogram is dragged', async () => {
  await button('Look B').click();
  const plot = await page.getByRole('img', { name: /^Depth histogram/ }).boundingBox();
  assert.ok(plot);
  await page.getByRole('slider', { name: 'Focal Point' }).fill('50');
  await page.mouse.move(plot.x + plot.width / 2, plot.y + 20);
  await page.mouse.down();
  await page.mouse.move(plot.x + plot.width * 0.75, plot.y + 20, { steps: 3 });
  await page.mouse.up();
  await settled(page);
  assert.ok(Math.abs(Number(opened.server.shot.state().parameters['Focal Point']) - 75) < 2);
});

test('the console has nothing to complain of', () => assert.deepEqual(opened.complaints, []));
