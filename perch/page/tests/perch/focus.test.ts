// Pulling focus on the sample still, with the effect itself.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import type { Page } from 'playwright-core';
import { violations } from '../browser/axe';
import { closeBrowser, openAt, settled } from '../browser/page';
import type { Opened } from '../browser/page';
import { readPng } from '../standin/png';
import { setEachByKeys, sessionOf, stateOf } from './keyboard';
import { View, sample } from './program';
import { difference, gradientEnergy } from './shown';

let view: View;
let opened: Opened;
let page: Page;
const result = () => page.getByRole('img', { name: 'Result' });

before(async () => {
  const files = ['-i', sample('still/beauty.png'), '--control-layer', sample('still/depth.png'), '-o', '{}/still.png'];
  view = await View.start([...files, '--maximum-blur', '40', '--focal-point', '97']);
  opened = await openAt(view.address, { viewport: { width: 1440, height: 900 } });
  page = opened.page;
});
after(async () => {
  await opened?.close();
  await closeBrowser();
  assert.equal(await view.end(), 130);
});

async function clickAt(x: number, y: number): Promise<void> {
  const { width, height } = (await sessionOf(page)).picture;
  const box = await result().boundingBox();
  assert.ok(box);
  await page.mouse.click(box.x + ((x + 0.5) * box.width) / width, box.y + ((y + 0.5) * box.height) / height);
}

const matte = readPng(readFileSync(sample('still/depth.png')));

// The cards of samples/README.md.
for (const { name, x, y } of [
  { name: '6 m', x: 1021, y: 455 },
  { name: '12 m', x: 714, y: 324 },
])
  test(`a click on the card "${name}" takes the matte's value there, and the card gets sharp`, async () => {
    await settled(page);
    const blurred = await gradientEnergy(page, x, y, 24);
    await clickAt(x, y);
    const value = (100 * (matte.codes[y * matte.width + x] as number)) / 65535;
    await page.waitForFunction((value) => {
      const focal = document.querySelector('perch-view')?.store.number('Focal Point');
      return focal !== undefined && Math.abs(focal - value) < 1e-9;
    }, value);
    await settled(page);
    assert.ok(Math.abs(((await stateOf(page)).parameters['Focal Point'] as number) - value) < 1e-9);
    const sharp = await gradientEnergy(page, x, y, 24);
    assert.ok(sharp > 4 * blurred, `${blurred} before, ${sharp} after`);
  });

test('the settled picture is the one that the copied command renders', async () => {
  await page.getByRole('combobox', { name: 'Blur Type' }).selectOption('Fine');
  await settled(page);
  await page.getByRole('button', { name: 'Copy command', exact: true }).click();
  await page.getByText('The command is copied.').waitFor();
  const command = await page.evaluate(() => navigator.clipboard.readText());
  assert.match(command, /^perch render /);
  assert.deepEqual(await difference(page, await view.rendered(command, 'still.png')), { size: [1280, 720], sent: 0, shown: 0 });
});

test('a layer shows the files given, and another choice is in picture and command', async () => {
  const layer = page.getByRole('combobox', { name: 'Control Layer' });
  assert.deepEqual(await layer.locator('option').allTextContents(), ['None', 'depth.png']);
  const before = await view.rendered((await stateOf(page)).command, 'still.png');
  await layer.selectOption('None');
  await settled(page);
  const { command } = await stateOf(page);
  assert.match(command, / --control-layer none\b/);
  const { sent, shown } = await difference(page, before);
  assert.ok(sent > 100_000 && shown > 100_000, `${sent}, ${shown}`);
  assert.deepEqual(await difference(page, await view.rendered(command, 'still.png')), { size: [1280, 720], sent: 0, shown: 0 });
  await layer.selectOption('depth.png');
  await settled(page);
  assert.match((await stateOf(page)).command, / --control-layer \S*depth\.png\b/);
  assert.deepEqual(await difference(page, before), { size: [1280, 720], sent: 0, shown: 0 });
});

test('every parameter is set by keyboard alone', async () => {
  const { parameters } = await sessionOf(page);
  assert.equal(await setEachByKeys(page), parameters.filter(({ type }) => type !== 'layer').length);
});

test('axe-core finds nothing', async () => assert.deepEqual(await violations(page), []));

test('Render runs the command and tells its end', async () => {
  await page.getByRole('button', { name: 'Render', exact: true }).click();
  await page.getByRole('log', { name: 'Messages' }).getByText(/still\.png" is written/).waitFor();
  await page.getByRole('button', { name: 'Render', exact: true }).waitFor();
});

test('the console has nothing to complain of', () => assert.deepEqual(opened.complaints, []));
