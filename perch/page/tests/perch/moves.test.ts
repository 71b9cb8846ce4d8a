// Quick moves on the sample shot: the last values are those shown, whatever was overtaken on the way.
import assert from 'node:assert/strict';
import { test } from 'node:test';
import { closeBrowser, openAt, settled } from '../browser/page';
import { stateOf } from './keyboard';
import { View, sample } from './program';
import { difference } from './shown';

const moved = ['Focal Point', 'In-focus Range', 'Maximum Blur'] as const;

test('no update is lost in random moves', async () => {
  const files = ['-i', sample('shot/beauty.####.png'), '--control-layer', sample('shot/depth.####.png'), '-o', '{}/shot.####.png'];
  const view = await View.start(files);
  const { page, complaints, close } = await openAt(view.address);
  let seed = 7;
  const chance = (below: number) => ((seed = (seed * 1103515245 + 12345) % 2 ** 31), Math.floor((seed / 2 ** 31) * below));
  for (let move = 0; move < 120; move += 1) {
    const name = chance(6) === 0 ? 'Frame' : (moved[chance(moved.length)] as string);
    await page.getByRole('slider', { name, exact: true }).fill(String(name === 'Frame' ? 1 + chance(24) : chance(100)));
    if (chance(12) === 0) await page.getByRole('button', { name: 'Undo', exact: true }).click();
    if (chance(8) === 0) await page.waitForTimeout(chance(300));
  }
  await settled(page);
  const { frame, parameters, command } = await stateOf(page);
  assert.equal(frame, Number(await page.getByRole('slider', { name: 'Frame', exact: true }).inputValue()));
  for (const name of moved)
    assert.equal(parameters[name], Number(await page.getByRole('slider', { name }).inputValue()), name);
  const file = `shot.${String(frame).padStart(4, '0')}.png`;
  const expected = await view.rendered(`${command} --frames ${frame}`, file);
  assert.deepEqual(await difference(page, expected), { size: [640, 360], sent: 0, shown: 0 });
  assert.deepEqual(complaints, []);
  await close();
  await closeBrowser();
  assert.equal(await view.end(), 130);
});
