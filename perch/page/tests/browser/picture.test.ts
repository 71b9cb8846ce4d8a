import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import type { Page } from 'playwright-core';
import type { PixelAnswer } from '../../src/model/session';
import { stampSize } from '../standin/scene';
import { stampOf } from '../standin/server';
import { closeBrowser, open, settled } from './page';
import type { OpenPage } from './page';

let opened: OpenPage;
let page: Page;
const result = () => page.getByRole('img', { name: 'Result' });
const focal = () => page.getByRole('slider', { name: 'Focal Point' });

before(async () => {
  opened = await open({ hasStamps: true });
  page = opened.page;
});
after(async () => {
  await opened.close();
  await closeBrowser();
});

// What the server has drawn into the corner of the picture that is on the canvas.
function stampShown(): Promise<number> {
  return result().evaluate((element, size) => {
    const context = document.createElement('canvas').getContext('2d', { willReadFrequently: true }) as CanvasRenderingContext2D;
    context.drawImage(element as HTMLCanvasElement, 0, 0);
    const row = context.getImageData(0, 0, 32 * size, 1).data;
    let stamp = 0;
    for (let bit = 31; bit >= 0; bit -= 1) stamp = stamp * 2 + ((row[bit * size * 4] as number) > 127 ? 1 : 0);
    return stamp;
  }, stampSize);
}

async function picturePlace(x: number, y: number): Promise<{ x: number; y: number }> {
  const box = await result().boundingBox();
  assert.ok(box);
  return { x: box.x + ((x + 0.5) * box.width) / 640, y: box.y + ((y + 0.5) * box.height) / 360 };
}

async function value(name: string): Promise<unknown> {
  await settled(page);
  return opened.server.shot.state().parameters[name];
}

test('dragging a slider paints as it moves, and the last value set is the one shown', async () => {
  const box = await focal().boundingBox();
  assert.ok(box);
  const serialBefore = Number(await result().getAttribute('data-serial'));
  await page.mouse.move(box.x + 6, box.y + box.height / 2);
  await page.mouse.down();
  for (let step = 0; step <= 12; step += 1) {
    await page.mouse.move(box.x + 6 + step * 6, box.y + box.height / 2);
    await page.waitForTimeout(40);
  }
  await page.mouse.up();
  await settled(page);
  const painted = Number(await result().getAttribute('data-serial')) - serialBefore;
  assert.ok(painted >= 4, `${painted} pictures were painted`);
  const state = opened.server.shot.state();
  assert.equal(state.parameters['Focal Point'], Number(await focal().inputValue()));
  assert.equal(await stampShown(), stampOf(state.serial, state.parameters));
});

test('a drag is one step of undo', async () => {
  assert.notEqual(await value('Focal Point'), 0);
  await page.getByRole('button', { name: 'Undo' }).click();
  assert.equal(await value('Focal Point'), 0);
  await page.getByRole('button', { name: 'Redo' }).click();
  assert.notEqual(await value('Focal Point'), 0);
});

test('no update is lost in quick moves', async () => {
  let seed = 42;
  const chance = (below: number) => ((seed = (seed * 1103515245 + 12345) % 2 ** 31), seed % below);
  for (let move = 0; move < 40; move += 1) {
    const name = ['Focal Point', 'In-focus Range', 'Maximum Blur'][chance(3)] as string;
    await page.getByRole('slider', { name }).fill(String(chance(100)));
    if (chance(4) === 0) await page.getByRole('slider', { name: 'Frame', exact: true }).fill(String(1 + chance(24)));
    if (chance(10) === 0) await page.waitForTimeout(chance(200));
  }
  await settled(page);
  const state = opened.server.shot.state();
  for (const name of ['Focal Point', 'In-focus Range', 'Maximum Blur'])
    assert.equal(state.parameters[name], Number(await page.getByRole('slider', { name }).inputValue()), name);
  assert.equal(await stampShown(), stampOf(state.serial, state.parameters));
});

test('a click takes the value of the layer there', async () => {
  const { x, y } = await picturePlace(200, 250);
  await page.mouse.click(x, y);
  const code = (await page.evaluate(async () => (await fetch('/api/pixel?serial=0&x=200&y=250')).json())) as { value: number };
  assert.equal(await value('Focal Point'), code.value);
});

test('a drag with Shift makes near and far sharp', async () => {
  const [from, to] = [await picturePlace(60, 340), await picturePlace(400, 180)];
  await page.mouse.move(from.x, from.y);
  await page.keyboard.down('Shift');
  await page.mouse.down();
  await page.mouse.move(to.x, to.y, { steps: 3 });
  await page.mouse.up();
  await page.keyboard.up('Shift');
  await page.waitForTimeout(200);
  const [point, range] = [Number(await value('Focal Point')), Number(await value('In-focus Range'))];
  for (const [x, y] of [[60, 340], [400, 180]]) {
    const answer = (await page.evaluate(async ([x, y]) => (await fetch(`/api/pixel?serial=0&x=${x}&y=${y}`)).json(), [x, y])) as { value: number };
    assert.ok(Math.abs(answer.value - point) <= range + 0.1, `${answer.value} lies within ${point} ± ${range}`);
  }
});

test('the cross of the keyboard clicks as the pointer does', async () => {
  await page.getByRole('group', { name: 'Picture', exact: true }).focus();
  for (const key of ['ArrowRight', 'Shift+ArrowRight', 'ArrowDown', 'ArrowUp', 'Shift+ArrowDown']) await page.keyboard.press(key);
  await page.keyboard.press('Enter');
  await page.waitForTimeout(200);
  const answer = (await page.evaluate(async () => (await fetch('/api/pixel?serial=0&x=331&y=190')).json())) as { value: number };
  assert.equal(await value('Focal Point'), answer.value);
});

test('zoom keeps to the picture, one to one shows each pixel once, and fit shows all', async () => {
  const fitted = await result().boundingBox();
  await page.getByRole('button', { name: '1:1' }).click();
  assert.equal((await result().boundingBox())?.width, 640);
  await page.getByRole('button', { name: 'Zoom in' }).click();
  assert.equal((await result().boundingBox())?.width, 800);
  const at = await picturePlace(320, 180);
  await page.mouse.move(at.x, at.y);
  await page.mouse.wheel(0, -300);
  assert.ok(((await result().boundingBox())?.width ?? 0) > 1000);
  await page.keyboard.press('f');
  assert.deepEqual(await result().boundingBox(), fitted);
});

test('a drag pans and two fingers zoom, and neither focuses', async () => {
  const point = await value('Focal Point');
  for (let press = 0; press < 4; press += 1) await page.getByRole('button', { name: 'Zoom in' }).click();
  const before = await result().boundingBox();
  const at = await picturePlace(320, 180);
  await page.mouse.move(at.x, at.y);
  await page.mouse.down();
  await page.mouse.move(at.x - 60, at.y - 30, { steps: 3 });
  await page.mouse.up();
  const panned = await result().boundingBox();
  assert.ok(before && panned);
  assert.deepEqual([panned.x - before.x, panned.y - before.y].map(Math.round), [-60, -30]);
  const touch = await page.context().newCDPSession(page);
  await touch.send('Emulation.setTouchEmulationEnabled', { enabled: true, maxTouchPoints: 2 });
  const fingers = (half: number) => [{ x: at.x - half, y: at.y, id: 0 }, { x: at.x + half, y: at.y, id: 1 }];
  await touch.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: fingers(40) });
  await touch.send('Input.dispatchTouchEvent', { type: 'touchMove', touchPoints: fingers(60) });
  await touch.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
  await touch.send('Emulation.setTouchEmulationEnabled', { enabled: false });
  const zoomed = (await result().boundingBox())?.width ?? 0;
  assert.ok(Math.abs(zoomed / panned.width - 1.5) < 0.02, `${panned.width} before, ${zoomed} after`);
  await page.getByRole('button', { name: 'Fit' }).click();
  assert.equal(await value('Focal Point'), point);
});

test('the read-out tells place, codes, control value and distance', async () => {
  await settled(page);
  const { x, y } = await picturePlace(200, 250);
  await page.mouse.move(x, y);
  const pixel = (await page.evaluate(async () => (await fetch('/api/pixel?serial=0&x=200&y=250')).json())) as PixelAnswer;
  const readOut = page.getByRole('group', { name: 'Pixel', exact: true });
  await readOut.getByText(`source ${pixel.source.join(' ')}`).waitFor();
  const text = (await readOut.textContent())?.replace(/\s+/g, ' ') ?? '';
  assert.ok(text.startsWith('200, 250 '), text);
  assert.ok(Math.abs(Number(/depth ([\d.]+) %/.exec(text)?.[1]) - (pixel.value ?? NaN)) < 0.01, text);
  assert.ok(Math.abs(Number(/distance ([\d.]+)/.exec(text)?.[1]) - (pixel.distance ?? NaN)) < 0.01, text);
});

test('a click sets another parameter where one is chosen', async () => {
  const [point, radius] = [await value('Focal Point'), await value('Maximum Blur')];
  const target = page.getByRole('combobox', { name: 'Click sets' });
  await target.selectOption('Maximum Blur');
  const { x, y } = await picturePlace(100, 300);
  await page.mouse.click(x, y);
  await page.waitForTimeout(200);
  assert.notEqual(await value('Maximum Blur'), radius);
  assert.equal(await value('Focal Point'), point);
  await target.selectOption('Focal Point');
});

test('black, white or a checkerboard lies behind alpha', async () => {
  const ground = () => result().evaluate((canvas) => {
    const { backgroundColor, backgroundImage } = getComputedStyle(canvas.parentElement as Element);
    return backgroundImage === 'none' ? backgroundColor : backgroundImage.replace(/\(.*/, '');
  });
  const grounds = [];
  for (const name of ['White', 'Black', 'Checkerboard']) {
    await page.getByRole('combobox', { name: 'Behind alpha' }).selectOption(name);
    grounds.push(await ground());
  }
  assert.deepEqual(grounds, ['rgb(255, 255, 255)', 'rgb(0, 0, 0)', 'repeating-conic-gradient']);
});

test('the wipe shows the original to the left of a divider that moves by pointer and keys', async () => {
  await page.getByRole('button', { name: 'Wipe', exact: true }).click();
  await settled(page);
  const divider = page.getByRole('slider', { name: 'Wipe' });
  await divider.focus();
  await page.keyboard.press('PageUp');
  assert.equal(await divider.getAttribute('aria-valuenow'), '60');
  const box = await divider.boundingBox();
  assert.ok(box);
  await page.mouse.move(box.x + box.width / 2, box.y + 50);
  await page.mouse.down();
  await page.mouse.move(box.x - 100, box.y + 50, { steps: 4 });
  await page.mouse.up();
  assert.ok(Number(await divider.getAttribute('aria-valuenow')) < 55);
  assert.equal(await page.getByRole('img', { name: 'Original' }).isVisible(), true);
  await page.getByRole('button', { name: 'Result', exact: true }).click();
});

test('the original shows while its key is held', async () => {
  const original = page.getByRole('img', { name: 'Original' });
  assert.equal(await original.isVisible(), false);
  await page.keyboard.down('o');
  assert.equal(await original.isVisible(), true);
  await page.keyboard.up('o');
  assert.equal(await original.isVisible(), false);
});

for (const [name, boxes] of [['Side by side', 2], ['Overlay', 1]] as const)
  test(`${name} shows result and Focus view at once`, async () => {
    await page.getByRole('button', { name, exact: true }).click();
    await settled(page);
    const [shown, focus] = [await result().boundingBox(), await page.getByRole('img', { name: 'Focus' }).boundingBox()];
    assert.equal(shown?.width, focus?.width);
    assert.equal(shown?.x === focus?.x, boxes === 1);
    await page.getByRole('button', { name: 'Result', exact: true }).click();
  });

test('an error of the effect is shown with its command, and the next picture goes on', async () => {
  opened.server.breaksAt = 33;
  await focal().fill('33');
  const messages = page.getByRole('log', { name: 'Messages' });
  await messages.getByText(`frame ${opened.server.shot.newest.frame}: the effect crashed at RENDER`).waitFor();
  await messages.getByText('perch render …').waitFor();
  await focal().fill('34');
  await settled(page);
  assert.equal(await messages.getByText('crashed').count(), 0);
  opened.complaints.splice(0); // the browser notes the answer of 500 itself
});

test('the console has nothing to complain of', () => assert.deepEqual(opened.complaints, []));
